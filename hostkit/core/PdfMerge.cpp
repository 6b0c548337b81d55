#include "core/PdfMerge.h"

#include <unistd.h>

#include <cstdio>
#include <memory>
#include <qpdf/Pl_StdioFile.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include "core/FileCopy.h"
#include "platform/portable/FileSystem.h"
#include "runtime/ErrorHandler.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::hostkit {

namespace {

// Passes on what the writer writes, counting its bytes and hashing them
// (64-bit FNV-1a): reading the file back must give the same, which proves
// it whole at the cost of one read, without parsing it again.
class Tally final : public Pipeline {
 public:
  explicit Tally(Pipeline* next) : Pipeline("tally", next) {}
  void write(unsigned char const* data, size_t length) override {
    Add(data, length);
    getNext()->write(data, length);
  }
  void finish() override { getNext()->finish(); }
  void Add(unsigned char const* data, size_t length) {
    constexpr uint64_t kPrime = 0x100000001b3ULL;
    for (size_t i = 0; i < length; ++i) hash = (hash ^ data[i]) * kPrime;
    bytes += length;
  }
  bool operator==(const Tally& other) const { return bytes == other.bytes && hash == other.hash; }

  uint64_t bytes = 0;
  uint64_t hash = 0xcbf29ce484222325ULL;
};

// The tally of a file as it is on disk.
bool TallyFile(const std::string& hostPath, Tally& tally) {
  FILE* in = std::fopen(hostPath.c_str(), "rb");
  if (in == nullptr) return false;
  unsigned char buffer[64 * 1024];
  size_t read = 0;
  while ((read = std::fread(buffer, 1, sizeof buffer, in)) > 0) tally.Add(buffer, read);
  const bool whole = std::ferror(in) == 0;
  std::fclose(in);
  return whole;
}

}  // namespace

bool PdfMerge::Merge(const std::string& /*options*/, const std::vector<std::string>& files,
                     const std::string& target) {
  if (files.empty()) return false;
  // Written beside the target, checked, then put in its place: a failed
  // merge leaves neither a part of a file nor a damaged target.
  RemoveAbandoned(target);
  const std::string beside = BesideName(target);
  const std::string besidePath = platform::portable::HostPath(beside);
  const auto failure = Attempt([&] {
    QPDF merged;
    merged.emptyPDF();
    QPDFPageDocumentHelper mergedPages(merged);
    // The sources must outlive the write: their pages are copied from them.
    std::vector<std::unique_ptr<QPDF>> sources;
    size_t expected = 0;
    for (const auto& file : files) {
      auto source = std::make_unique<QPDF>();
      source->setSuppressWarnings(true);
      const std::string sourcePath = platform::portable::HostPath(file);
      source->processFile(sourcePath.c_str());
      for (auto& page : QPDFPageDocumentHelper(*source).getAllPages()) {
        mergedPages.addPage(page, false);
        ++expected;
      }
      sources.push_back(std::move(source));
    }
    if (QPDFPageDocumentHelper(merged).getAllPages().size() != expected) {
      throw RunTimeError(vb_error::kInternalError, "the merged file lacks pages");
    }
    FILE* out = besidePath.empty() ? nullptr : std::fopen(besidePath.c_str(), "wb");
    if (out == nullptr) throw RunTimeError(vb_error::kInternalError, "cannot create " + beside);
    bool written = false;
    Pl_StdioFile file("merged", out);
    Tally sent(&file);
    const auto writing = Attempt([&] {
      QPDFWriter writer(merged);
      writer.setOutputPipeline(&sent);
      writer.write();
      written = std::fflush(out) == 0 && std::ferror(out) == 0;
    });
    written = std::fclose(out) == 0 && written && !writing;
    Tally onDisk(nullptr);
    if (!written || !TallyFile(besidePath, onDisk) || !(onDisk == sent)) {
      throw RunTimeError(vb_error::kInternalError, "the merged file is not whole");
    }
  });
  if (failure) {
    if (!besidePath.empty()) ::unlink(besidePath.c_str());
    return false;
  }
  std::string why;
  return ReplaceWith(beside, target, true, why);
}

int PdfPageCount(const std::string& file) {
  int pages = -1;
  IgnoreErrors([&] {
    QPDF pdf;
    pdf.setSuppressWarnings(true);
    const std::string path = platform::portable::HostPath(file);
    pdf.processFile(path.c_str());
    pages = static_cast<int>(QPDFPageDocumentHelper(pdf).getAllPages().size());
  });
  return pages;
}

}  // namespace kestrivon::hostkit
