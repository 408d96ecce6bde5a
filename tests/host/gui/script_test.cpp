// Scripts as text.
#include "host/gui/script.h"

#include <gtest/gtest.h>

#include "tests/host/sentence_of.h"
#include "tests/support/split.h"

namespace {
TEST(ScriptTest, ReadsEveryGesture) {
    const auto steps = ParseScript("s",
                                   "\xEF\xBB\xBF# a comment\r\n\n  size 640 480 \nclick 10,-20 right ctrl\n"
                                   "WHEEL plot:50,12.5 -3 shift\nkey Ctrl+Shift+z\nkey escape\ntype  Inl\xC3\xA5st  text \n"
                                   "menu undo\npicture out dir/a.png\nsave\nsave b.odb\nremember\nexpect same\n"
                                   "click axis1:0,0 double\npress tag12:50,50\nmove 5,5\nrelease 5,5");
    ASSERT_EQ(steps.size(), 18u);
    EXPECT_EQ(steps[0].kind, ScriptStep::Size);
    EXPECT_EQ(steps[0].number, 640);
    EXPECT_EQ(steps[0].second, 480);
    EXPECT_EQ(steps[0].line, 3);
    EXPECT_EQ(steps[1].kind, ScriptStep::Press);
    EXPECT_TRUE(steps[1].right && steps[1].control && !steps[1].shift);
    EXPECT_EQ(steps[1].point.y, -20);
    EXPECT_EQ(steps[2].kind, ScriptStep::Release);
    EXPECT_EQ(steps[3].number, -3);
    EXPECT_EQ(steps[3].point.place, "plot");
    EXPECT_EQ(steps[3].point.y, 12.5);
    EXPECT_TRUE(steps[4].key == 'Z' && steps[4].control && steps[4].shift);
    EXPECT_EQ(steps[5].key, VK_ESCAPE);
    EXPECT_EQ(steps[6].text, "Inl\xC3\xA5st  text");
    EXPECT_EQ(steps[8].text, "out dir/a.png");
    EXPECT_EQ(steps[9].text, "");
    EXPECT_TRUE(steps[13].twice);
    EXPECT_EQ(steps[15].point.place, "tag12");
    EXPECT_EQ(steps[17].line, 18);
    EXPECT_TRUE(ParseScript("s", "").empty());
}

TEST(ScriptTest, TakesDragsApart) {
    const auto steps = ParseScript("s", "drag plot:10,20 plot:60,70 shift\ndrag 1,1 bar:50,50");
    ASSERT_EQ(steps.size(), 7u + 3u);
    EXPECT_EQ(steps[0].kind, ScriptStep::Press);
    EXPECT_TRUE(steps[0].shift);
    EXPECT_EQ(steps[1].point.x, 20);
    EXPECT_EQ(steps[5].point.x, 60);
    EXPECT_EQ(steps[6].kind, ScriptStep::Release);
    EXPECT_EQ(steps[6].point.y, 70);
    EXPECT_EQ(steps[8].point.place, "bar");
}

TEST(ScriptTest, RefusesMistakesWithTheirLine) {
    for (const std::string& line :
         Split("jump 1,2|press|press 1|press 1,2,3|press 1;2|press 99999,0|press a,b|press plot:1|press moon:1,2|press axis:1,2|"
               "press axis1234:1,2|press 1,2 middle|press nan,1|press inf,1|press plot:1e9,1|move 1,2 left|drag 1,2|"
               "drag 1,2 3,4 left|wheel 1,2|wheel 1,2 x|wheel 1,2 500|key|key Hyper+A|key ab|key \xC3\xA5|key a b|size 10|"
               "size 0 10|size 10 99999|type|type \xE2\x82|menu|picture|expect|expect different|expect same again|remember "
               "it")) {
        const std::string sentence = SentenceOf([&] { ParseScript("my.txt", "size 10 10\n" + line + "\nremember"); });
        EXPECT_TRUE(sentence.starts_with("my.txt, line 2: ")) << line << ": " << sentence;
    }
}
}  // namespace
