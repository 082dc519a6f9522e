#include "editor/window_menu.h"

#include <cstdio>

#include "editor/gui_editor.h"
#include "editor/window_look.h"
#include "editor/window_size.h"

using namespace VSTGUI;

namespace {

struct Threshold {
    float logits;
    const char* name;
};
constexpr Threshold thresholds[] = {
    {-2, "many more"}, {-1, "more"}, {0, "as trained"}, {1, "fewer"}, {2, "many fewer"}};
constexpr float levels[] = {-12, -6, 0, 6, 12, 18, 24, 30, 40};  // dB

std::string LevelText(float dB) {
    char text[32];
    std::snprintf(text, sizeof text, dB == 0 ? "%g dB" : "%+.3g dB", static_cast<double>(dB));
    return text;
}

SharedPointer<COptionMenu> Menu() {
    return makeOwned<COptionMenu>(CRect(), nullptr, -1);
}

void AddChoice(COptionMenu& menu, guiEditor& editor, const std::string& name, const Hearing& choice) {
    auto* item = new CCommandMenuItem(CCommandMenuItem::Desc(name.c_str()));
    item->setChecked(choice == editor.CurrentHearing());
    item->setActions([&editor, choice](CCommandMenuItem*) { editor.PreferHearing(choice); });
    menu.addEntry(item);
}

void AddHearing(COptionMenu& menu, guiEditor& editor) {
    const Hearing now = editor.CurrentHearing();
    const auto with = [&now](auto member, auto value) {
        Hearing choice = now;
        choice.*member = value;
        return choice;
    };
    const auto ears = Menu(), notes = Menu(), inputs = Menu();
    AddChoice(*ears, editor, "Classic", with(&Hearing::ear, Ear::classic));
    // A host may have chosen the look-ahead for files; it stays.
    AddChoice(*ears, editor, "Refined",
              with(&Hearing::ear, now.ear == Ear::refinedFile ? Ear::refinedFile : Ear::refinedLive));
    for (const auto& [logits, name] : thresholds)
        AddChoice(*notes, editor, name, with(&Hearing::threshold, logits));
    for (const float level : levels)
        AddChoice(*inputs, editor, LevelText(level), with(&Hearing::level, level));
    menu.addEntry(ears, "Ear");
    menu.addEntry(notes, "Refined: notes");
    menu.addEntry(inputs, "Input level");
}

void AddNoteDates(COptionMenu& menu, guiEditor& editor) {
    const auto dates = Menu();
    for (const NoteDates choice : {NoteDates::automatic, NoteDates::whenBegun, NoteDates::neverEarly}) {
        auto* item = new CCommandMenuItem(CCommandMenuItem::Desc(NameOf(choice)));
        item->setChecked(choice == editor.CurrentNoteDates());
        item->setActions([&editor, choice](CCommandMenuItem*) { editor.PreferNoteDates(choice); });
        dates->addEntry(item);
    }
    menu.addEntry(dates, "Note dates");
}

void AddSizes(COptionMenu& menu, guiEditor& editor) {
    const auto sizes = Menu();
    for (const std::int32_t percent : windowSizes) {
        auto* item = new CCommandMenuItem(CCommandMenuItem::Desc((std::to_string(percent) + " %").c_str()));
        item->setChecked(percent == editor.WindowSize());
        item->setActions([&editor, percent](CCommandMenuItem*) { editor.PreferSize(percent); });
        sizes->addEntry(item);
    }
    menu.addEntry(sizes, "Window size");
}

void AddBeginnings(COptionMenu& menu, guiEditor& editor) {
    const auto beginnings = Menu();
    for (const Beginning& each : Beginnings()) {
        auto* item = new CCommandMenuItem(CCommandMenuItem::Desc(each.title.c_str()));
        item->setActions([&editor, each](CCommandMenuItem*) { editor.BeginWith(each); });
        beginnings->addEntry(item);
    }
    menu.addEntry(beginnings, "Begin with");
}

void AddDark(COptionMenu& menu, guiEditor& editor) {
    const bool isDark = CurrentVariant() == Variant::dark;
    auto* item = new CCommandMenuItem(CCommandMenuItem::Desc("Dark"));
    item->setChecked(isDark);
    item->setActions([&editor, isDark](CCommandMenuItem*) { editor.PreferDark(!isDark); });
    menu.addEntry(item);
}

void AddUndo(COptionMenu& menu, guiEditor& editor) {
    const std::string& what = editor.UndoName();
    auto* item =
        new CCommandMenuItem(CCommandMenuItem::Desc((what.empty() ? "Undo" : "Undo " + what).c_str()));
    item->setEnabled(!what.empty());
    item->setActions([&editor](CCommandMenuItem*) { editor.Undo(); });
    menu.addEntry(item);
}

}  // namespace

SharedPointer<COptionMenu> MakeWindowMenu(guiEditor& editor) {
    auto menu = Menu();
    if (editor.OffersHearing()) AddHearing(*menu, editor);
    if (editor.OffersNoteDates()) AddNoteDates(*menu, editor);
    AddSizes(*menu, editor);
    AddBeginnings(*menu, editor);
    AddUndo(*menu, editor);
    AddDark(*menu, editor);
    return menu;
}

std::string HearingText(const Hearing& hearing) {
    std::string text = hearing.ear == Ear::classic ? "" : "Ear: Refined";
    if (hearing.ear != Ear::classic && hearing.threshold != 0)
        text += hearing.threshold > 0 ? ", fewer notes" : ", more notes";
    if (hearing.level != 0) text += (text.empty() ? "Input " : ", ") + LevelText(hearing.level);
    return text;
}
