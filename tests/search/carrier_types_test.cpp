#include "search/carrier_types.h"

#include <gtest/gtest.h>

#include <vector>

namespace tarnel {
namespace {

std::vector<std::size_t> IndicesThatAccept(std::string_view extension) {
  std::vector<std::size_t> indices;
  for (std::size_t i = 0; i < CarrierTypes().size(); ++i)
    if (TypeAccepts(CarrierTypes()[i], extension)) indices.push_back(i);
  return indices;
}

TEST(CarrierTypes, EachExtensionPassesAtItsGroupsAndAtTheItemsWhoseTextNamesIt) {
  const struct {
    const char* extension;
    std::vector<std::size_t> indices;
  } cases[] = {{"bmp", {0, 1, 2}},   {"pcx", {0, 1, 6}},   {"avi", {0, 9, 10}},  {"mpe", {0, 9, 12}},
               {"mpeg", {0, 9, 12}}, {"mp3", {0, 13, 14}}, {"mid", {0, 13, 17}}, {"exe", {0, 18, 19}},
               {"ocx", {0, 18, 21}}, {"snd", {16}},        {"mp", {12, 14}},     {"m", {11, 12, 14, 17}},
               {"txt", {}},          {"PNG", {}},          {"peg", {}}};
  for (const auto& [extension, indices] : cases)
    EXPECT_EQ(IndicesThatAccept(extension), indices) << extension;
}

TEST(CarrierTypes, AnExtensionIsWhatFollowsTheLastPointInLowerCase) {
  const struct {
    const char* name;
    const char* extension;
  } cases[] = {{"a.png", "png"}, {"A.JpEg", "jpeg"}, {"a.tar.gz", "gz"},         {"png", ""},
               {"a.", ""},       {".png", "png"},    {"a.\xc4\xd6", "\xc4\xd6"}, {"", ""}};
  for (const auto& [name, extension] : cases)
    EXPECT_EQ(LowerExtension(name), extension) << name;
}

}  // namespace
}  // namespace tarnel
