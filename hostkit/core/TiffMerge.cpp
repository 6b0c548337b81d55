#include "core/TiffMerge.h"

#include <tiffio.h>

#include <cstdio>
#include <memory>

#include "platform/portable/FileSystem.h"

namespace kestrivon::hostkit {
namespace {

struct TiffCloser {
  void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffFile = std::unique_ptr<TIFF, TiffCloser>;

// libtiff's own messages would go to stderr; the answer says enough.
void Quiet(const char*, const char*, va_list) {}

TiffFile Open(const std::string& windowsPath, const char* mode) {
  TIFFSetErrorHandler(Quiet);
  TIFFSetWarningHandler(Quiet);
  return TiffFile(TIFFOpen(platform::portable::HostPath(windowsPath).c_str(), mode));
}

// The page the input is at, as the next page of the output.
bool CopyPage(TIFF* in, TIFF* out) {
  uint32_t width = 0;
  uint32_t height = 0;
  TIFFGetField(in, TIFFTAG_IMAGEWIDTH, &width);
  TIFFGetField(in, TIFFTAG_IMAGELENGTH, &height);
  if (width == 0 || height == 0) return false;
  std::vector<uint32_t> raster(static_cast<size_t>(width) * height);
  if (TIFFReadRGBAImageOriented(in, width, height, raster.data(), ORIENTATION_TOPLEFT, 0) == 0) {
    return false;
  }
  TIFFSetField(out, TIFFTAG_IMAGEWIDTH, width);
  TIFFSetField(out, TIFFTAG_IMAGELENGTH, height);
  TIFFSetField(out, TIFFTAG_BITSPERSAMPLE, 8);
  TIFFSetField(out, TIFFTAG_SAMPLESPERPIXEL, 3);
  TIFFSetField(out, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
  TIFFSetField(out, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(out, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE);
  TIFFSetField(out, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(out, 0));
  float resolution = 0;
  uint16_t unit = 0;
  if (TIFFGetField(in, TIFFTAG_XRESOLUTION, &resolution) != 0) {
    TIFFSetField(out, TIFFTAG_XRESOLUTION, resolution);
  }
  if (TIFFGetField(in, TIFFTAG_YRESOLUTION, &resolution) != 0) {
    TIFFSetField(out, TIFFTAG_YRESOLUTION, resolution);
  }
  if (TIFFGetField(in, TIFFTAG_RESOLUTIONUNIT, &unit) != 0) {
    TIFFSetField(out, TIFFTAG_RESOLUTIONUNIT, unit);
  }
  std::vector<uint8_t> row(static_cast<size_t>(width) * 3);
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) {
      const uint32_t pixel = raster[static_cast<size_t>(y) * width + x];
      row[3 * x] = static_cast<uint8_t>(TIFFGetR(pixel));
      row[3 * x + 1] = static_cast<uint8_t>(TIFFGetG(pixel));
      row[3 * x + 2] = static_cast<uint8_t>(TIFFGetB(pixel));
    }
    if (TIFFWriteScanline(out, row.data(), y, 0) < 0) return false;
  }
  return TIFFWriteDirectory(out) != 0;
}

bool MergeInto(const std::vector<std::string>& files, TIFF* out) {
  for (const auto& file : files) {
    const TiffFile in = Open(file, "r");
    if (!in) return false;
    do {
      if (!CopyPage(in.get(), out)) return false;
    } while (TIFFReadDirectory(in.get()) != 0);
  }
  return true;
}

}  // namespace

bool TiffMerge::Merge(const std::vector<std::string>& files, const std::string& target) {
  if (files.empty()) return false;
  bool merged = false;
  {
    const TiffFile out = Open(target, "w");
    if (!out) return false;
    merged = MergeInto(files, out.get());
  }
  if (!merged) std::remove(platform::portable::HostPath(target).c_str());
  return merged;
}

int TiffPageCount(const std::string& path) {
  const TiffFile tiff = Open(path, "r");
  return tiff ? static_cast<int>(TIFFNumberOfDirectories(tiff.get())) : 0;
}

}  // namespace kestrivon::hostkit
