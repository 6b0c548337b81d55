// Appending a one-page PDF to a 2000-page archive: through the host kit's
// merge beside the qpdf command doing the same (MergeHostKit, MergeQpdf),
// and whole, as AppendFile does it, through the component's MergePDFFiles
// (merge into a temporary file, copy it over the archive through the host's
// file copy, delete the temporary and the appended file) beside qpdf, cp
// and rm doing the same (MergeWhole, MergeWholeQpdfCp). All run as child
// processes, so that each one's peak memory can be read. The whole merges
// append to one archive that grows by a page per run, on both sides alike.

#include <benchmark/benchmark.h>

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFWriter.hh>
#include <string>

#include "BenchSupport.h"
#include "core/PdfMerge.h"
#include "core/SimTraceService.h"
#include "core/TraceLog.h"
#include "host/portable/HostActivation.h"
#include "pipeline/PdfMerging.h"
#include "platform/portable/TempFiles.h"

namespace kestrivon::bench {
namespace {

constexpr int kArchivePages = 2000;

// A document of pages with a few lines of text each, made by qpdf.
void WritePdf(const std::filesystem::path& path, int pages, const std::string& title) {
  QPDF pdf;
  pdf.emptyPDF();
  const QPDFObjectHandle font = pdf.makeIndirectObject(
      QPDFObjectHandle::parse("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>"));
  QPDFPageDocumentHelper document(pdf);
  for (int page = 1; page <= pages; ++page) {
    std::string text = "BT /F1 11 Tf 72 760 Td 14 TL";
    for (int line = 1; line <= 40; ++line) {
      text +=
          " (" + title + " page " + std::to_string(page) + " line " + std::to_string(line) + ") '";
    }
    text += " ET";
    QPDFObjectHandle object = pdf.makeIndirectObject(
        QPDFObjectHandle::parse("<< /Type /Page /MediaBox [0 0 612 792] /Resources << >> >>"));
    object.getKey("/Resources")
        .replaceKey("/Font", QPDFObjectHandle::newDictionary({{"/F1", font}}));
    object.replaceKey("/Contents", QPDFObjectHandle::newStream(&pdf, text));
    document.addPage(QPDFPageObjectHelper(object), false);
  }
  QPDFWriter writer(pdf, path.c_str());
  writer.write();
}

struct Inputs {
  std::filesystem::path scratch = ScratchFolder();
  std::string big = (scratch / "archive.pdf").string();
  std::string small = (scratch / "revision.pdf").string();
  std::string out = (scratch / "merged.pdf").string();
  Inputs() {
    WritePdf(big, kArchivePages, "Archive");
    WritePdf(small, 1, "Revision");
  }
};

const Inputs& Files() {
  static const Inputs inputs;
  return inputs;
}

void Run(benchmark::State& state, const std::vector<std::string>& command) {
  const Inputs& files = Files();
  if (!RunEach(state, command)) return;
  QPDF merged;
  merged.processFile(files.out.c_str());
  const auto pages = QPDFPageDocumentHelper(merged).getAllPages().size();
  if (pages != kArchivePages + 1) state.SkipWithError("the merged file lacks pages");
}

void MergeHostKit(benchmark::State& state) {
  const Inputs& files = Files();
  Run(state, {SelfPath(), "--merge", files.big, files.small, files.out});
}

void MergeQpdf(benchmark::State& state) {
  const Inputs& files = Files();
  Run(state, {"qpdf", "--empty", "--pages", files.big, files.small, "--", files.out});
}

// The whole merges' archive: a copy of the 2000-page archive that both
// sides append to; the page to append is copied afresh before each run,
// since the merge deletes it.
struct WholeFiles {
  std::string archive = (Files().scratch / "whole-archive.pdf").string();
  std::string page = (Files().scratch / "whole-page.pdf").string();
  std::string temporary = (Files().scratch / "whole-merged.pdf").string();
  WholeFiles() { std::filesystem::copy_file(Files().big, archive); }
};

const WholeFiles& Whole() {
  static const WholeFiles files;
  return files;
}

void RunWhole(benchmark::State& state, const std::vector<std::string>& command) {
  QPDF before;
  before.processFile(Whole().archive.c_str());
  const auto pages = QPDFPageDocumentHelper(before).getAllPages().size();
  const auto runs = RunEach(state, command);
  if (!runs) return;
  QPDF after;
  after.processFile(Whole().archive.c_str());
  if (QPDFPageDocumentHelper(after).getAllPages().size() != pages + *runs) {
    state.SkipWithError("the archive did not grow by a page per merge");
  }
}

void MergeWhole(benchmark::State& state) {
  RunWhole(state, {SelfPath(), "--merge-whole", Whole().archive, Files().small, Whole().page});
}

void MergeWholeQpdfCp(benchmark::State& state) {
  const WholeFiles& files = Whole();
  RunWhole(state, {"sh", "-c",
                   "cp \"$2\" \"$3\" && qpdf --empty --pages \"$1\" \"$3\" -- \"$4\" && "
                   "cp \"$4\" \"$1\" && rm -f \"$3\" \"$4\"",
                   "sh", files.archive, Files().small, files.page, files.temporary});
}

BENCHMARK(MergeHostKit)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(MergeQpdf)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(MergeWhole)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(MergeWholeQpdfCp)->UseRealTime()->Unit(benchmark::kMillisecond);

// The child of MergeWhole: the page to append copied into place, then the
// component's MergePDFFiles with the host kit's trace service (its log, its
// file copy) and merge installed as the host's.
int MergeWholeChild(const std::string& archive, const std::string& page,
                    const std::string& toAppend) {
  std::filesystem::copy_file(page, toAppend, std::filesystem::copy_options::overwrite_existing);
  // The merge's temporary file in the folder where the reference writes
  // its own, not in a shared temporary folder of any size.
  platform::portable::SetTempPath(WindowsPath(std::filesystem::path(archive).parent_path()));
  const auto log = std::make_shared<hostkit::TraceLog>(
      std::filesystem::path(archive).parent_path() / "vemra-trace.log");
  const auto trace = std::make_shared<hostkit::SimTraceService>(log, std::nullopt, std::nullopt);
  host::portable::InstallHostFactories(
      {.traceService = [&] { return trace; },
       .pdfMerge = [] { return std::make_shared<hostkit::PdfMerge>(); }});
  const bool merged = MergePDFFiles(WindowsPath(archive), WindowsPath(toAppend));
  host::portable::InstallHostFactories({});
  return merged ? 0 : 1;
}

}  // namespace
}  // namespace kestrivon::bench

// "--merge BIG SMALL OUT": the child that merges through the host kit.
int main(int argc, char** argv) {
  using kestrivon::bench::WindowsPath;
  if (argc == 5 && std::string(argv[1]) == "--merge-whole") {
    return kestrivon::bench::MergeWholeChild(argv[2], argv[3], argv[4]);
  }
  if (argc == 5 && std::string(argv[1]) == "--merge") {
    kestrivon::hostkit::PdfMerge merge;
    return merge.Merge("", {WindowsPath(argv[2]), WindowsPath(argv[3])}, WindowsPath(argv[4])) ? 0
                                                                                               : 1;
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
