#pragma once

namespace kestrivon::labels {

// The first part of every trace line and the class argument of LogError,
// one per code unit. Some are spelt unusually (no product prefix, a doubled
// letter, a point); they stay exactly as the released component writes them.
inline constexpr const char* kVemraTiff = "VemraKestrivon::VemraTiff";
inline constexpr const char* kAcrobatDistiller = "VemraKestrivon::AcrobatDistiller";
inline constexpr const char* kAcrobatWriter = "VemraKestrivon::AcrobatWriter";
inline constexpr const char* kPDFFactory = "VemraKestrivon::PDFFactory";
inline constexpr const char* kDummy = "VemraKestrivon::Dummy";
inline constexpr const char* kGlobals = "VemraKestrivon::Globals";
inline constexpr const char* kNoFile = "VemraKestrivon::NoFile";
inline constexpr const char* kAdobePDF = "VemraKestrivon::AdobePDF";
inline constexpr const char* kRevisionFileLock = "Kestrivon::DocumentLock";
inline constexpr const char* kVemraHARP = "VemraKestrivon::VemraHARP";
inline constexpr const char* kHARPConfiguration = "VemraKestrivon::HARPConfiguration";
inline constexpr const char* kPrnDevice = "VemmraKestrivon.PrnDevice";

}  // namespace kestrivon::labels
