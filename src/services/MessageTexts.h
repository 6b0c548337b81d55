#pragma once

// The message identifier texts that the component shows: "~", five
// lower-case hexadecimal digits, a blank and the default text, resolved
// through the host's ResolveText before they are shown. Named by what they
// say; the identifier stays in the text, which is what the host resolves.
// The comment says which part of the component uses each.

namespace kestrivon::messages {

// revision folder lock (message box title)
inline constexpr const char* kRevisionTitle = "~003c1 Revision";
// revision folder lock
inline constexpr const char* kLockUser = "~01114 Benutzer:";
// printer device, HARP configuration
inline constexpr const char* kRevisionPrinterTitle = "~01d8c Revisionsdrucker";
// revision folder lock
inline constexpr const char* kFolderInUse =
    "~026ef Ein anderer Revisionsvorgang druckt zur Zeit in Ihr Ausgabeverzeichnis.";
// revision folder lock
inline constexpr const char* kLockComputer = "~026f0 Computer:";
// revision folder lock
inline constexpr const char* kLockStartTime = "~026f1 Startzeit:";
// revision folder lock
inline constexpr const char* kRevisionCancelled =
    "~026f2 Der aktuelle Revisionsvorgang wird abgebrochen.";
// Acrobat Distiller printer
inline constexpr const char* kDistillerNotInstalled =
    "~02821 Acrobat Distiller wurde nicht installiert.";
// Adobe PDF printer
inline constexpr const char* kAdobePdfNotInstalled = "~02822 Adobe PDF wurde nicht installiert.";
// Acrobat settings check
inline constexpr const char* kAdobeSettingMustBeOff =
    "~02824 Die folgende Adobe PDF-Einstellung muß deaktiviert werden:";
// Acrobat settings check
inline constexpr const char* kViewAdobePdfResults = "~02825 'Adobe PDF-Ergebnisse anzeigen'";
// Acrobat settings check
inline constexpr const char* kPromptForPdfFileName =
    "~02826 'Eingabeaufforderung für Adobe PDF-Dateiname'";
// Acrobat settings check
inline constexpr const char* kPortsProperty = "~02827 'Anschlüsse|Anschluß'";
// Acrobat settings check
inline constexpr const char* kWrongProperty = "~02828 Die folgende Eigenschaft ist fehlerhaft:";
// Acrobat settings check
inline constexpr const char* kItsValueIs = "~02829 Sie hat den folgenden Wert:";
// Acrobat settings check
inline constexpr const char* kGiveReadablePath =
    "~0282a Bitte geben Sie einen interpretierbaren Pfad an (z.B.: 'C:\\Temp\\*.pdf')";
// Acrobat settings check, pdfFactory printer
inline constexpr const char* kWrongPrinterSetting = "~0282b Fehlerhafte Druckereinstellung:";
// pdfFactory printer
inline constexpr const char* kDoNotShowDialogNeeded =
    "~02833 The option: 'Do not show dialog' must be activated.";
// pdfFactory printer
inline constexpr const char* kAutoSaveFolderNeeded =
    "~02834 The option: 'save the file in AutoSave folder' must be activated.";
// pdfFactory printer
inline constexpr const char* kPdfFactoryNotInstalled =
    "~02835 PDF - Factory wurde nicht installiert.";
// Acrobat settings check
inline constexpr const char* kAskToReplacePdf =
    "~02836 'Aufforderung zum Ersetzen vorhandener PDF-Datei'";
// pdfFactory printer
inline constexpr const char* kPrinterSeemsMissing =
    "~033cc The requested revision printer does not seem to be installed";
// pdfFactory printer
inline constexpr const char* kPdfFactoryCheckFailed =
    "~033cd An unexpected error occurred while checking the pdfFactory Settings";
// pdfFactory printer
inline constexpr const char* kShowDialogMustBe = "~033ce Show dialog has to be set to:";
// pdfFactory printer
inline constexpr const char* kNoViewNoSend = "~033cf no - no view, no send";
// pdfFactory printer
inline constexpr const char* kRegistryUnreadable = "~033d0 Could not read registry";
// pdfFactory printer
inline constexpr const char* kPdfReadyBoxesCleared =
    "~033d1 Neither of the check boxes beneath 'When PDF file is ready' must be selected.";
// HARP configuration
inline constexpr const char* kIniFileMissing = "~033d3 Ini-file cannot be found.";
// HARP configuration
inline constexpr const char* kIniPrinterNameMissing =
    "~033d4 No printer name defined in the ini-file.";
// HARP configuration
inline constexpr const char* kSupportedArchives =
    "~033d5 Vemra only supports the following revision archives";
// HARP configuration
inline constexpr const char* kIniConvertCommandMissing =
    "~033d6 No conversion command defined in the ini-file.";
// printer device
inline constexpr const char* kQueueNotEmpty =
    "~03b09 Revisions cannot be printed if the printer queue is not empty.";
// printer device
inline constexpr const char* kRevisionPrinterCaption = "~03b0a Revision printer";
// Acrobat settings check
inline constexpr const char* kAdvancedPrintingFeatures = "~0407d Enable advanced printing features";
// HARP configuration
inline constexpr const char* kConfigPathFailed = "~0407e Retrieving configuration path failed.";
// Acrobat settings check
inline constexpr const char* kKeepPrintedDocuments = "~05626 Keep printed documents";
// pdfFactory printer
inline constexpr const char* kSettingsCheckFailed =
    "~05790 Checking printer settings failed. Please make sure the following settings are set:";
// pdfFactory printer
inline constexpr const char* kConfirmSettings =
    "~05791 Please confirm the printer settings by pressing the OK button.";
// printer device
inline constexpr const char* kRevisionPrinterNotInstalled =
    "~05d3a Revision printer is not installed. Revision printing is not possible.";
// printer device
inline constexpr const char* kPrinterNotReadyGoOn =
    "~05d3b Der Revisionsdrucker ist nicht bereit. Wollen Sie trotzdem revisionieren?";
// HARP printer
inline constexpr const char* kPrinterNotInstalled = "~05d86 Printer is not installed";
// HARP configuration
inline constexpr const char* kOutputFolderMissing = "~05d87 Printer output folder does not exist";

// All of them, in the order of their identifiers.
inline constexpr const char* kAll[] = {kRevisionTitle,
                                       kLockUser,
                                       kRevisionPrinterTitle,
                                       kFolderInUse,
                                       kLockComputer,
                                       kLockStartTime,
                                       kRevisionCancelled,
                                       kDistillerNotInstalled,
                                       kAdobePdfNotInstalled,
                                       kAdobeSettingMustBeOff,
                                       kViewAdobePdfResults,
                                       kPromptForPdfFileName,
                                       kPortsProperty,
                                       kWrongProperty,
                                       kItsValueIs,
                                       kGiveReadablePath,
                                       kWrongPrinterSetting,
                                       kDoNotShowDialogNeeded,
                                       kAutoSaveFolderNeeded,
                                       kPdfFactoryNotInstalled,
                                       kAskToReplacePdf,
                                       kPrinterSeemsMissing,
                                       kPdfFactoryCheckFailed,
                                       kShowDialogMustBe,
                                       kNoViewNoSend,
                                       kRegistryUnreadable,
                                       kPdfReadyBoxesCleared,
                                       kIniFileMissing,
                                       kIniPrinterNameMissing,
                                       kSupportedArchives,
                                       kIniConvertCommandMissing,
                                       kQueueNotEmpty,
                                       kRevisionPrinterCaption,
                                       kAdvancedPrintingFeatures,
                                       kConfigPathFailed,
                                       kKeepPrintedDocuments,
                                       kSettingsCheckFailed,
                                       kConfirmSettings,
                                       kRevisionPrinterNotInstalled,
                                       kPrinterNotReadyGoOn,
                                       kPrinterNotInstalled,
                                       kOutputFolderMissing};

}  // namespace kestrivon::messages
