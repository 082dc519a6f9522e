// What the window offers of the choices that are the user's and no parameters.
#include "editor/gui_editor.h"

bool guiEditor::OffersHearing() const {
    return effect->prefersHearing();
}

Hearing guiEditor::CurrentHearing() const {
    return effect->hearing();
}

void guiEditor::PreferHearing(const Hearing& wanted) {
    const Hearing before = CurrentHearing();
    effect->setHearing(wanted);
    ShowStored(StorePreferredHearing(before, wanted));
}

bool guiEditor::OffersNoteDates() const {
    return effect->prefersNoteDates();
}

NoteDates guiEditor::CurrentNoteDates() const {
    return effect->noteDates();
}

void guiEditor::PreferNoteDates(NoteDates wanted) {
    effect->setNoteDates(wanted);
    ShowStored(StorePreferredNoteDates(wanted));
}
