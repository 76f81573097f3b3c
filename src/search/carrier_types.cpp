#include "search/carrier_types.h"

#include <algorithm>
#include <array>

namespace tarnel {
namespace {

using Extensions = std::span<const std::string_view>;

// All groups in a row, so that the first item can take the whole of it.
constexpr auto kExtensions = std::to_array<std::string_view>({"bmp", "jpg", "gif", "jpeg", "tif", "tiff",
                                                              "dib", "wmf", "png", "pcx",                  //
                                                              "avi", "mov", "mpg", "mpe",  "mpa", "mpeg",  //
                                                              "mp3", "wav", "mid",                         //
                                                              "exe", "dll", "ocx"});
constexpr Extensions kAll = kExtensions;
constexpr Extensions kImages = kAll.subspan(0, 10);
constexpr Extensions kVideos = kAll.subspan(10, 6);
constexpr Extensions kSounds = kAll.subspan(16, 3);
constexpr Extensions kPrograms = kAll.subspan(19, 3);

constexpr auto kTypes = std::to_array<CarrierType>({
    {"All Carrier Types", kAll},
    {"Image Files", kImages},
    {"-> Bitmap Image(*.bmp, *.dib)", {}},
    {"-> JPEG Image (*.jpg, *.jpeg)", {}},
    {"-> GIF Image (*.gif)", {}},
    {"-> TIFF Image (*.tif, *.tiff)", {}},
    {"-> PCX Image (*.pcx)", {}},
    {"-> PNG Image (*.png)", {}},
    {"-> WMF Image (*.wmf)", {}},
    {"Video File", kVideos},
    {"-> Video Clip (*.avi)", {}},
    {"-> Movie (*.mov)", {}},
    {"-> Movie clip (*.mpg, *.mpeg, *.mpa, *.mpe)", {}},
    {"Audio File", kSounds},
    {"-> MP3 Audio (*.mp3)", {}},
    {"-> WAV Audio (*.wav)", {}},
    {"-> SND Audio (*.snd)", {}},
    {"-> MID Audio (*.mid)", {}},
    {"Program File", kPrograms},
    {"-> Applications (*.exe)", {}},
    {"-> DLL Library (*.dll)", {}},
    {"-> Active-X Contols(*.ocx)", {}},
});

constexpr char ToLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

std::span<const CarrierType> CarrierTypes() {
  return kTypes;
}

bool TypeAccepts(const CarrierType& type, std::string_view extension) {
  if (!type.extensions.empty()) return std::ranges::find(type.extensions, extension) != type.extensions.end();
  return type.text.find("*." + std::string(extension)) != std::string_view::npos;
}

std::string LowerExtension(std::string_view fileName) {
  const std::size_t point = fileName.rfind('.');
  if (point == std::string_view::npos) return {};
  std::string extension(fileName.substr(point + 1));
  std::ranges::transform(extension, extension.begin(), ToLower);
  return extension;
}

}  // namespace tarnel
