// Courseware: its type, its pages, its title.
#include "VelWhiteBoard/services/resources.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace VelWhiteBoard {
namespace {

std::uint64_t typeOf(const std::string& address) {
  VelWhiteBoardResource resource;
  resource.fileUrl = address;
  return resource.getResourceType();
}

TEST(Resources, TheExtensionTellsTheTypeInAnyCase) {
  EXPECT_EQ(typeOf("https://example.org/files/Lesson.PPTX"), 2U);
  EXPECT_EQ(typeOf("Lesson.ppt"), 2U);
  EXPECT_EQ(typeOf("a.pdf"), 1U);
  EXPECT_EQ(typeOf("a.PDF"), 1U);
  EXPECT_EQ(typeOf("a.png"), 0U);
}

TEST(Resources, OnlyTheLastExtensionCounts) {
  EXPECT_EQ(typeOf("a.PPT.pdf"), 1U);
  EXPECT_EQ(typeOf("a.pdf.png"), 0U);
}

TEST(Resources, AnExtensionNeedOnlyContainTheName) {
  EXPECT_EQ(typeOf("a.xpptz"), 2U);
  EXPECT_EQ(typeOf("a.xpdfz"), 1U);
  EXPECT_EQ(typeOf("a.pdfppt"), 2U) << "slides are asked for first";
}

TEST(Resources, WithoutAnExtensionAreImages) {
  EXPECT_EQ(VelWhiteBoardResource().getResourceType(), 0U);
  EXPECT_EQ(typeOf(""), 0U);
  EXPECT_EQ(typeOf("pdf"), 0U);
  EXPECT_EQ(typeOf("a."), 0U);
  EXPECT_EQ(typeOf("folder.pdf/a"), 0U) << "of the last component, not of a folder";
}

TEST(Resources, ANameThatBeginsWithItsOnlyDotIsAllExtension) {
  EXPECT_EQ(typeOf(".pdf"), 1U);
  EXPECT_EQ(typeOf("/a/.ppt"), 2U);
}

TEST(Resources, TheNumberOfPagesIsThatOfTheImages) {
  VelWhiteBoardResource resource;
  EXPECT_EQ(resource.getTotalPage(), 0);
  resource.totalPage = 10;
  EXPECT_EQ(resource.getTotalPage(), 0);
  resource.images.emplace(3, std::make_shared<VelImageResource>());
  EXPECT_EQ(resource.getTotalPage(), 3);
  EXPECT_EQ(resource.totalPage, 10U);
}

TEST(Resources, WithoutATitleAnswerTheDefaultAndDoNotStoreIt) {
  const auto resource = modelWithJSON<VelWhiteBoardResource>(R"({"id":5})");
  ASSERT_TRUE(resource);
  EXPECT_EQ(resource->title(), "白板");
  EXPECT_FALSE(modelToJSONObject(*resource).contains("title"));
}

TEST(Resources, AnEmptyTitleIsATitle) {
  VelWhiteBoardResource resource;
  resource.setTitle("");
  EXPECT_EQ(resource.title(), "");
  EXPECT_EQ(modelToJSONObject(resource).at("title"), "");
  resource.setTitle(std::nullopt);
  EXPECT_EQ(resource.title(), "白板");
}

TEST(Resources, ATitleAndTheDefaultInItsPlaceAreNotEqual) {
  VelWhiteBoardResource one;
  const VelWhiteBoardResource other;
  one.setTitle("白板");
  EXPECT_EQ(one.title(), other.title());
  EXPECT_FALSE(one == other);
}

TEST(Resources, ThatDifferOnlyInTheirSecondSizeAreNotEqual) {
  VelWhiteBoardResource one;
  VelWhiteBoardResource other;
  EXPECT_TRUE(one == other);
  other.size = 1;
  EXPECT_FALSE(one == other);
}

TEST(Resources, TheirImagesAreDecodedAsImages) {
  const auto classes = VelWhiteBoardResource::modelContainerPropertyGenericClass();
  ASSERT_EQ(classes.size(), 1U);
  EXPECT_EQ(classes.at("images"), &VelImageResource::ownClass());

  const auto resource = modelWithJSON<VelWhiteBoardResource>(
      R"({"fileID":7,"images":[{"fileID":"f","fileUrl":"u","id":18446744073709551615}]})");
  ASSERT_TRUE(resource && resource->images);
  ASSERT_EQ(resource->images->size(), 1U);
  EXPECT_EQ(resource->fileID, 7);
  EXPECT_EQ(resource->images->front()->fileID, "f");
  EXPECT_EQ(resource->images->front()->id, 18446744073709551615U);
}

TEST(Resources, CopiesShareTheImages) {
  VelWhiteBoardResource resource;
  resource.images.emplace(1, std::make_shared<VelImageResource>());
  const auto copy = resource.copyWithZone();
  EXPECT_TRUE(*copy == resource);
  EXPECT_EQ(copy->images->front(), resource.images->front());
}

}  // namespace
}  // namespace VelWhiteBoard
