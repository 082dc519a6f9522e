#include "plugin/hearing.h"
#include "tests/editor/editor_test.h"
#include "tests/support/temp_folder.h"

namespace {

class WindowMenu : public EditorTest {
protected:
    void SetUp() override {
        setenv("XDG_CONFIG_HOME", folder.path.c_str(), 1);
        Open();
    }
    void TearDown() override { unsetenv("XDG_CONFIG_HOME"); }
    void OpenMenu() {
        host->RightClick(120, 200);
        host->Settle();
        MoveTo({140, 210});  // the first row
    }
    void MoveTo(Place place) {
        host->MoveTo(place.x, place.y);
        host->Settle();
    }

    TempFolder folder;
};

// The menu lies at the pointer, with rows of 19 pixels; what a row opens lies to its right.
TEST_F(WindowMenu, ChoosesTheEarOfThisInstanceAndOfThoseToComeWhereNoHostDoes) {
    const Picture bare = Page();
    OpenMenu();
    EXPECT_EQ(Page(), bare);  // the host has controls of its own for it
    host->plugin.usePreferredHearing();
    EXPECT_EQ(host->plugin.hearing(), Hearing());
    OpenMenu();
    MoveTo({255, 210});
    Click({260, 229});
    const Hearing refined{Ear::refinedLive, 0, 0};
    EXPECT_TRUE(host->Await([&] { return host->plugin.hearing() == refined; }));
    EXPECT_TRUE(host->Await([&] { return Page() != bare; }));  // it is shown
    EXPECT_EQ(ReadPreferredHearing(), refined);
    OpenMenu();
    host->Call(effEditClose);  // with a menu beside a menu
    ASSERT_TRUE(host->Open());
}

}  // namespace
