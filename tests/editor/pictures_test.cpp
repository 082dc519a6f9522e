#include "editor/pictures.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct Wanted {
    std::int32_t id, width, height;
};

// The layout of the window rests on these.
const Wanted wanted[] = {
    {103, 400, 320}, {104, 22, 216},  {105, 21, 21},  {110, 176, 16},  {111, 221, 16}, {112, 18, 18},
    {113, 267, 263}, {114, 51, 34},   {115, 51, 34},  {116, 51, 34},   {117, 51, 34},  {118, 267, 263},
    {119, 74, 34},   {121, 113, 34},  {122, 113, 34}, {123, 113, 34},  {124, 226, 22}, {125, 226, 22},
    {126, 226, 22},  {128, 267, 263}, {129, 51, 34},  {130, 51, 34},   {131, 51, 34},  {132, 51, 34},
    {133, 51, 34},   {135, 267, 263}, {136, 25, 252}, {177, 267, 263},
};

}  // namespace

TEST(Pictures, HaveTheSizesThatTheWindowIsLaidOutFor) {
    for (const Wanted& each : wanted) {
        EXPECT_EQ(SizeOfPicture(each.id).width, each.width) << each.id;
        EXPECT_EQ(SizeOfPicture(each.id).height, each.height) << each.id;
    }
    for (const std::int32_t small : {138, 139, 140, 141, 142}) {
        EXPECT_GE(SizeOfPicture(small).width, 17) << small;
        EXPECT_LE(SizeOfPicture(small).width, 19) << small;
        EXPECT_EQ(SizeOfPicture(small).height % 2, 0) << small << " holds two states, one above the other";
    }
    EXPECT_EQ(AllPictures().size(), std::size(wanted) + 5);
}

TEST(Pictures, AreWholeFiles) {
    const std::string signature = "\x89PNG\r\n\x1A\n", last("\0\0\0\0IEND\xAE\x42\x60\x82", 12);
    for (const Picture& each : AllPictures()) {
        const std::string bytes(each.begin, each.end);
        EXPECT_TRUE(bytes.starts_with(signature) && bytes.ends_with(last)) << each.id;
    }
    EXPECT_EQ(FindPicture(120), nullptr);
    EXPECT_EQ(SizeOfPicture(-1).width, 0);
}
