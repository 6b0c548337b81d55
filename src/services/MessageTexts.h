#pragma once

// The message identifier texts that the component shows: "~", five
// lower-case hexadecimal digits, a blank and the default text, resolved
// through the host's ResolveText before they are shown. Named by their
// identifiers; the comment says which part of the component uses each.

namespace kestrivon::messages {

// revision folder lock (message box title)
inline constexpr const char* k003c1 = "~003c1 Revision";
// revision folder lock
inline constexpr const char* k01114 = "~01114 Benutzer:";
// printer device, HARP configuration
inline constexpr const char* k01d8c = "~01d8c Revisionsdrucker";
// revision folder lock
inline constexpr const char* k026ef =
    "~026ef Ein anderer Revisionsvorgang druckt zur Zeit in Ihr Ausgabeverzeichnis.";
// revision folder lock
inline constexpr const char* k026f0 = "~026f0 Computer:";
// revision folder lock
inline constexpr const char* k026f1 = "~026f1 Startzeit:";
// revision folder lock
inline constexpr const char* k026f2 = "~026f2 Der aktuelle Revisionsvorgang wird abgebrochen.";
// Acrobat Distiller printer
inline constexpr const char* k02821 = "~02821 Acrobat Distiller wurde nicht installiert.";
// Adobe PDF printer
inline constexpr const char* k02822 = "~02822 Adobe PDF wurde nicht installiert.";
// Acrobat settings check
inline constexpr const char* k02824 =
    "~02824 Die folgende Adobe PDF-Einstellung muß deaktiviert werden:";
// Acrobat settings check
inline constexpr const char* k02825 = "~02825 'Adobe PDF-Ergebnisse anzeigen'";
// Acrobat settings check
inline constexpr const char* k02826 = "~02826 'Eingabeaufforderung für Adobe PDF-Dateiname'";
// Acrobat settings check
inline constexpr const char* k02827 = "~02827 'Anschlüsse|Anschluß'";
// Acrobat settings check
inline constexpr const char* k02828 = "~02828 Die folgende Eigenschaft ist fehlerhaft:";
// Acrobat settings check
inline constexpr const char* k02829 = "~02829 Sie hat den folgenden Wert:";
// Acrobat settings check
inline constexpr const char* k0282a =
    "~0282a Bitte geben Sie einen interpretierbaren Pfad an (z.B.: 'C:\\Temp\\*.pdf')";
// Acrobat settings check, pdfFactory printer
inline constexpr const char* k0282b = "~0282b Fehlerhafte Druckereinstellung:";
// pdfFactory printer
inline constexpr const char* k02833 = "~02833 The option: 'Do not show dialog' must be activated.";
// pdfFactory printer
inline constexpr const char* k02834 =
    "~02834 The option: 'save the file in AutoSave folder' must be activated.";
// pdfFactory printer
inline constexpr const char* k02835 = "~02835 PDF - Factory wurde nicht installiert.";
// Acrobat settings check
inline constexpr const char* k02836 = "~02836 'Aufforderung zum Ersetzen vorhandener PDF-Datei'";
// pdfFactory printer
inline constexpr const char* k033cc =
    "~033cc The requested revision printer does not seem to be installed";
// pdfFactory printer
inline constexpr const char* k033cd =
    "~033cd An unexpected error occurred while checking the pdfFactory Settings";
// pdfFactory printer
inline constexpr const char* k033ce = "~033ce Show dialog has to be set to:";
// pdfFactory printer
inline constexpr const char* k033cf = "~033cf no - no view, no send";
// pdfFactory printer
inline constexpr const char* k033d0 = "~033d0 Could not read registry";
// pdfFactory printer
inline constexpr const char* k033d1 =
    "~033d1 Neither of the check boxes beneath 'When PDF file is ready' must be selected.";
// HARP configuration
inline constexpr const char* k033d3 = "~033d3 Ini-file cannot be found.";
// HARP configuration
inline constexpr const char* k033d4 = "~033d4 No printer name defined in the ini-file.";
// HARP configuration
inline constexpr const char* k033d5 = "~033d5 Vemra only supports the following revision archives";
// HARP configuration
inline constexpr const char* k033d6 = "~033d6 No conversion command defined in the ini-file.";
// printer device
inline constexpr const char* k03b09 =
    "~03b09 Revisions cannot be printed if the printer queue is not empty.";
// printer device
inline constexpr const char* k03b0a = "~03b0a Revision printer";
// Acrobat settings check
inline constexpr const char* k0407d = "~0407d Enable advanced printing features";
// HARP configuration
inline constexpr const char* k0407e = "~0407e Retrieving configuration path failed.";
// Acrobat settings check
inline constexpr const char* k05626 = "~05626 Keep printed documents";
// pdfFactory printer
inline constexpr const char* k05790 =
    "~05790 Checking printer settings failed. Please make sure the following settings are set:";
// pdfFactory printer
inline constexpr const char* k05791 =
    "~05791 Please confirm the printer settings by pressing the OK button.";
// printer device
inline constexpr const char* k05d3a =
    "~05d3a Revision printer is not installed. Revision printing is not possible.";
// printer device
inline constexpr const char* k05d3b =
    "~05d3b Der Revisionsdrucker ist nicht bereit. Wollen Sie trotzdem revisionieren?";
// HARP printer
inline constexpr const char* k05d86 = "~05d86 Printer is not installed";
// HARP configuration
inline constexpr const char* k05d87 = "~05d87 Printer output folder does not exist";

// All of them, in the order of their identifiers.
inline constexpr const char* kAll[] = {
    k003c1, k01114, k01d8c, k026ef, k026f0, k026f1, k026f2, k02821, k02822, k02824, k02825,
    k02826, k02827, k02828, k02829, k0282a, k0282b, k02833, k02834, k02835, k02836, k033cc,
    k033cd, k033ce, k033cf, k033d0, k033d1, k033d3, k033d4, k033d5, k033d6, k03b09, k03b0a,
    k0407d, k0407e, k05626, k05790, k05791, k05d3a, k05d3b, k05d86, k05d87};

}  // namespace kestrivon::messages
