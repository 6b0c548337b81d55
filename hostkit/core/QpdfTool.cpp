// qpdf as a separate program: the Windows host kit's PDF maker and merger.
#include "core/QpdfTool.h"

#include <windows.h>

#include <atomic>
#include <fstream>
#include <iterator>
#include <sstream>

#include "core/Environment.h"
#include "core/FileCopy.h"
#include "core/PdfMerge.h"
#include "core/PrintWorldHost.h"
#include "core/Settings.h"
#include "platform/win/Text.h"
#include "runtime/ErrorHandler.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::hostkit {
namespace {

constexpr DWORD kTimeOutMs = 120000;
constexpr DWORD kPollMs = 5;

using UnixFileName = char*(CDECL*)(const WCHAR*);

// Wine's own export that maps a Windows file name to the Linux one; null
// on Windows.
UnixFileName WineUnixFileName() {
  static const auto function = reinterpret_cast<UnixFileName>(reinterpret_cast<void*>(
      ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
  return function;
}

std::string UnixName(const std::string& windowsName) {
  const std::wstring wide = platform::win::ToWide(windowsName);
  char* unix = WineUnixFileName()(wide.c_str());
  if (unix == nullptr)
    throw RunTimeError(vb_error::kFileNotFound, "no Linux name for " + windowsName);
  std::string name(unix);
  ::HeapFree(::GetProcessHeap(), 0, unix);
  return name;
}

std::string ReadAll(const std::string& file) {
  std::ifstream in(PathFromUtf8(file), std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A fresh base name in the temp folder for one run's files.
std::string RunFileBase() {
  static std::atomic<unsigned> runs{0};
  wchar_t folder[MAX_PATH + 1] = {};
  ::GetTempPathW(MAX_PATH, folder);
  return platform::win::FromWide(folder) + "vemra-qpdf-" + std::to_string(::GetCurrentProcessId()) +
         "-" + std::to_string(++runs) + "-" + std::to_string(::GetTickCount());
}

std::string ShellQuoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

// One argument as the Windows command line rules read it back.
std::string WindowsQuoted(const std::string& text) {
  std::string quoted = "\"";
  size_t backslashes = 0;
  for (const char c : text) {
    if (c == '\\') {
      ++backslashes;
      continue;
    }
    quoted.append(c == '"' ? backslashes * 2 + 1 : backslashes, '\\');
    backslashes = 0;
    quoted += c;
  }
  quoted.append(backslashes * 2, '\\');
  return quoted + "\"";
}

bool Launch(std::string commandLine, HANDLE output, HANDLE errors, PROCESS_INFORMATION& process) {
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = nullptr;
  startup.hStdOutput = output;
  startup.hStdError = errors;
  return ::CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, output != nullptr,
                          CREATE_NO_WINDOW, nullptr, nullptr, &startup, &process) != FALSE;
}

// The first line qpdf wrote on its error output, for the reason.
std::string FirstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

bool Judge(DWORD code, const std::string& errors, std::string& why, bool warningsFail) {
  // 0: done; 3: done with warnings.
  if (code == 0 || (code == 3 && !warningsFail)) return true;
  why =
      "qpdf ended with " + std::to_string(code) + (errors.empty() ? "" : ": " + FirstLine(errors));
  return false;
}

// Under Wine: /bin/sh runs qpdf and then writes the exit code into a marker
// file, which appears whole (renamed into place).
bool RunUnderWine(const std::vector<QpdfArgument>& arguments, std::string& why, std::string* output,
                  bool warningsFail) {
  const std::string base = RunFileBase();
  const std::string marker = base + ".done";
  const std::string outFile = base + ".out";
  const std::string errFile = base + ".err";
  std::string script = ShellQuoted(GetEnvironment(kQpdfVariable).value_or("qpdf"));
  for (const auto& argument : arguments) {
    script += ' ' + ShellQuoted(argument.isFile ? UnixName(argument.text) : argument.text);
  }
  const std::string unixMarker = UnixName(marker);
  script += " >" + ShellQuoted(UnixName(outFile)) + " 2>" + ShellQuoted(UnixName(errFile)) +
            "; echo $? >" + ShellQuoted(unixMarker + ".part") + "; mv " +
            ShellQuoted(unixMarker + ".part") + ' ' + ShellQuoted(unixMarker);
  PROCESS_INFORMATION process{};
  if (!Launch("/bin/sh -c " + WindowsQuoted(script), nullptr, nullptr, process)) {
    why = "cannot start /bin/sh (error " + std::to_string(::GetLastError()) + ")";
    return false;
  }
  ::CloseHandle(process.hThread);
  ::CloseHandle(process.hProcess);
  const std::wstring wideMarker = platform::win::ToWide(marker);
  const DWORD start = ::GetTickCount();
  while (::GetFileAttributesW(wideMarker.c_str()) == INVALID_FILE_ATTRIBUTES) {
    if (::GetTickCount() - start > kTimeOutMs) {
      why = "qpdf did not end within two minutes";
      return false;
    }
    ::Sleep(kPollMs);
  }
  const DWORD code = static_cast<DWORD>(std::stoul("0" + FirstLine(ReadAll(marker))));
  const std::string errors = ReadAll(errFile);
  if (output != nullptr) *output = ReadAll(outFile);
  for (const auto& file : {marker, outFile, errFile}) {
    ::DeleteFileW(platform::win::ToWide(file).c_str());
  }
  return Judge(code, errors, why, warningsFail);
}

HANDLE InheritableFile(const std::string& name) {
  SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
  return ::CreateFileW(platform::win::ToWide(name).c_str(), GENERIC_WRITE, FILE_SHARE_READ,
                       &inherit, CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY, nullptr);
}

std::string WindowsQpdf(std::string& why) {
  if (const auto configured = GetEnvironment(kQpdfVariable)) return *configured;
  wchar_t found[MAX_PATH + 1] = {};
  if (::SearchPathW(nullptr, L"qpdf.exe", nullptr, MAX_PATH, found, nullptr) == 0) {
    why = "qpdf.exe is neither named by " + std::string(kQpdfVariable) + " nor on the PATH";
    return {};
  }
  return platform::win::FromWide(found);
}

bool RunOnWindows(const std::vector<QpdfArgument>& arguments, std::string& why, std::string* output,
                  bool warningsFail) {
  const std::string program = WindowsQpdf(why);
  if (program.empty()) return false;
  std::string commandLine = WindowsQuoted(program);
  for (const auto& argument : arguments) commandLine += ' ' + WindowsQuoted(argument.text);
  const std::string base = RunFileBase();
  const std::string outFile = base + ".out";
  const std::string errFile = base + ".err";
  HANDLE out = InheritableFile(outFile);
  HANDLE err = InheritableFile(errFile);
  PROCESS_INFORMATION process{};
  const bool started = out != INVALID_HANDLE_VALUE && err != INVALID_HANDLE_VALUE &&
                       Launch(commandLine, out, err, process);
  if (!started)
    why = "cannot start " + program + " (error " + std::to_string(::GetLastError()) + ")";
  for (HANDLE handle : {out, err}) {
    if (handle != INVALID_HANDLE_VALUE) ::CloseHandle(handle);
  }
  DWORD code = 1;
  if (started) {
    ::CloseHandle(process.hThread);
    if (::WaitForSingleObject(process.hProcess, kTimeOutMs) != WAIT_OBJECT_0) {
      ::TerminateProcess(process.hProcess, 1);
      why = "qpdf did not end within two minutes";
    }
    ::GetExitCodeProcess(process.hProcess, &code);
    ::CloseHandle(process.hProcess);
  }
  const std::string errors = ReadAll(errFile);
  if (output != nullptr) *output = ReadAll(outFile);
  ::DeleteFileW(platform::win::ToWide(outFile).c_str());
  ::DeleteFileW(platform::win::ToWide(errFile).c_str());
  return started && why.empty() && Judge(code, errors, why, warningsFail);
}

std::string Base64(const std::string& bytes) {
  static constexpr char kDigits[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (size_t i = 0; i < bytes.size(); i += 3) {
    uint32_t group = static_cast<uint8_t>(bytes[i]) << 16;
    if (i + 1 < bytes.size()) group |= static_cast<uint8_t>(bytes[i + 1]) << 8;
    if (i + 2 < bytes.size()) group |= static_cast<uint8_t>(bytes[i + 2]);
    for (size_t k = 0; k < 4; ++k) {
      text += i + k <= bytes.size() ? kDigits[(group >> (18 - 6 * k)) & 63] : '=';
    }
  }
  return text;
}

std::string PdfLiteral(const std::string& text) {
  std::string literal = "(";
  for (const char c : text) {
    if (c == '(' || c == ')' || c == '\\') literal += '\\';
    literal += c;
  }
  return literal + ")";
}

// qpdf's JSON description of one Letter page that shows the text in
// Helvetica; qpdf makes the PDF of it.
std::string TextPageJson(const std::string& text) {
  const std::string content = "BT /F1 18 Tf 72 720 Td " + PdfLiteral(text) + " Tj ET\n";
  return R"({"qpdf": [{"jsonversion": 2, "pdfversion": "1.4",)"
         R"( "pushedinheritedpageresources": false, "calledgetallpages": false, "maxobjectid": 5},)"
         R"({"obj:1 0 R": {"value": {"/Type": "/Catalog", "/Pages": "2 0 R"}},)"
         R"( "obj:2 0 R": {"value": {"/Type": "/Pages", "/Kids": ["3 0 R"], "/Count": 1}},)"
         R"( "obj:3 0 R": {"value": {"/Type": "/Page", "/Parent": "2 0 R",)"
         R"( "/MediaBox": [0, 0, 612, 792], "/Contents": "4 0 R",)"
         R"( "/Resources": {"/Font": {"/F1": "5 0 R"}}}},)"
         R"( "obj:4 0 R": {"stream": {"dict": {}, "data": ")" +
         Base64(content) +
         R"("}},)"
         R"( "obj:5 0 R": {"value": {"/Type": "/Font", "/Subtype": "/Type1",)"
         R"( "/BaseFont": "/Helvetica"}},)"
         R"( "trailer": {"value": {"/Root": "1 0 R", "/Size": 6}}}]})";
}

}  // namespace

bool RunQpdf(const std::vector<QpdfArgument>& arguments, std::string& why, std::string* output,
             bool warningsFail) {
  why.clear();
  bool ran = false;
  if (const auto error = Attempt([&] {
        ran = WineUnixFileName() != nullptr ? RunUnderWine(arguments, why, output, warningsFail)
                                            : RunOnWindows(arguments, why, output, warningsFail);
      })) {
    why = error->description;
    return false;
  }
  return ran;
}

namespace {

// The pages of a PDF; -1 when it is none, or with warnings when strict (a
// cut-off file is read by recovering, with warnings).
int PagesOf(const std::string& file, bool strict) {
  std::string why;
  std::string output;
  if (!RunQpdf({{"--show-npages"}, {file, true}}, why, &output, strict)) return -1;
  int pages = -1;
  std::istringstream(output) >> pages;
  return pages;
}

}  // namespace

int PdfPageCount(const std::string& file) { return PagesOf(file, false); }

bool PdfMerge::Merge(const std::string& /*options*/, const std::vector<std::string>& files,
                     const std::string& target) {
  if (files.empty()) return false;
  int expected = 0;
  for (const auto& file : files) {
    const int pages = PdfPageCount(file);
    if (pages < 0) return false;
    expected += pages;
  }
  // Written beside the target, checked, then put in its place: a failed
  // merge leaves neither a part of a file nor a damaged target.
  RemoveAbandoned(target);
  const std::string beside = BesideName(target);
  std::vector<QpdfArgument> arguments{{"--empty"}, {"--pages"}};
  for (const auto& file : files) arguments.push_back({file, true});
  arguments.push_back({"--"});
  arguments.push_back({beside, true});
  std::string why;
  if (!RunQpdf(arguments, why) || PagesOf(beside, true) != expected) {
    ::DeleteFileW(platform::win::ToWide(beside).c_str());
    return false;
  }
  return ReplaceWith(beside, target, true, why);
}

std::string MakeDriverPdf(const std::string& sourceFile, const std::string& documentName) {
  const std::string base = RunFileBase();
  const std::string made = base + ".pdf";
  const std::string json = base + ".json";
  std::string why;
  bool ok = false;
  if (!sourceFile.empty() &&
      RunQpdf({{"--empty"}, {"--pages"}, {sourceFile, true}, {"--"}, {made, true}}, why)) {
    ok = true;
  } else {
    std::ofstream(PathFromUtf8(json), std::ios::binary) << TextPageJson(documentName);
    ok = RunQpdf({{"--json-input"}, {json, true}, {made, true}}, why);
  }
  std::string bytes = ok ? ReadAll(made) : std::string();
  ::DeleteFileW(platform::win::ToWide(made).c_str());
  ::DeleteFileW(platform::win::ToWide(json).c_str());
  return bytes;
}

}  // namespace kestrivon::hostkit
