#include "tests/editor/editor_test.h"

namespace {

class OptionsPage : public EditorTest {
protected:
    void SetUp() override {
        host->plugin.setParameter(92, 4.0F);
        ASSERT_TRUE(host->Open());
        host->Settle();
    }
};

}  // namespace

TEST_F(OptionsPage, TheInstrumentsLabelShowsWhatItsSliderWasSetTo) {
    host->MoveTo(43, 267);
    host->Press();
    host->Settle();
    host->MoveTo(300, 267);  // to its end
    host->Release();
    host->Settle();
    const auto label = [this] { return host->Pixels(34, 38 + 242, 220, 17); };
    const auto shown = label();
    EXPECT_EQ(host->plugin.getParameter(87), 1.0F);
    host->plugin.setParameter(87, 1.0F);  // from the host: the label is made anew
    host->Idle();
    host->Settle();
    EXPECT_EQ(label(), shown);
}

// Half the page is 133 whole pixels, where the channel menu ends and the page's own colour begins.
TEST_F(OptionsPage, ControlsEndOnWholePixels) {
    EXPECT_EQ(host->Pixel(133, 38 + 204), host->Pixel(136, 38 + 204));
}
