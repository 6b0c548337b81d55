// Appending a one-page PDF to a 2000-page archive through the host kit's
// merge, beside the qpdf command doing the same. Both run as child
// processes, so that each one's peak memory can be read.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFWriter.hh>
#include <string>

#include "BenchSupport.h"
#include "core/PdfMerge.h"

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
  long peak = 0;
  for (auto _ : state) {
    rusage usage{};
    if (!RunChild(command, &usage)) {
      state.SkipWithError("the merge failed");
      return;
    }
    peak = std::max(peak, usage.ru_maxrss);
  }
  QPDF merged;
  merged.processFile(files.out.c_str());
  const auto pages = QPDFPageDocumentHelper(merged).getAllPages().size();
  if (pages != kArchivePages + 1) state.SkipWithError("the merged file lacks pages");
  state.counters["peak_KiB"] = static_cast<double>(peak);
}

void MergeHostKit(benchmark::State& state) {
  const Inputs& files = Files();
  Run(state, {SelfPath(), "--merge", files.big, files.small, files.out});
}

void MergeQpdf(benchmark::State& state) {
  const Inputs& files = Files();
  Run(state, {"qpdf", "--empty", "--pages", files.big, files.small, "--", files.out});
}

BENCHMARK(MergeHostKit)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(MergeQpdf)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrivon::bench

// "--merge BIG SMALL OUT": the child that merges through the host kit.
int main(int argc, char** argv) {
  using kestrivon::bench::WindowsPath;
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
