#include "lv2/ui.h"

#include <chrono>
#include <cstring>
#include <utility>

#include <lv2/atom/atom.h>
#include <lv2/instance-access/instance-access.h>
#include <lv2/options/options.h>
#include <lv2/urid/urid.h>

#include "lv2/features.h"
#include "lv2/uris.h"

namespace {

constexpr std::int64_t timeout = 500;  // ms that the host may take for an echo

std::int64_t Milliseconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

// The scale of its display, among the options of a host that says it; 0 for none.
float ScaleOf(const LV2_Feature* const* features) {
    const auto* map = Feature<LV2_URID_Map>(features, LV2_URID__map);
    const auto* option = Feature<LV2_Options_Option>(features, LV2_OPTIONS__options);
    if (map == nullptr) return 0;
    const LV2_URID scale = map->map(map->handle, LV2_UI__scaleFactor);
    const LV2_URID number = map->map(map->handle, LV2_ATOM__Float);
    for (; option != nullptr && option->key != 0; ++option)
        if (option->key == scale && option->type == number && option->value != nullptr)
            return *static_cast<const float*>(option->value);
    return 0;
}

}  // namespace

Ui* Ui::Make(const char* plugin, LV2UI_Write_Function write, LV2UI_Controller controller,
             LV2UI_Widget* widget, const LV2_Feature* const* features) noexcept {
    try {
        if (plugin == nullptr || std::strcmp(plugin, pluginUri) != 0) return nullptr;
        std::shared_ptr<Instance> instance = Instance::Find(Feature<void>(features, LV2_INSTANCE_ACCESS_URI));
        if (instance == nullptr || !instance->TakeWindow()) return nullptr;
        auto ui = std::make_unique<Ui>(std::move(instance), write, controller);
        if (widget != nullptr) *widget = nullptr;
        ui->instance->Object().SetScale(static_cast<double>(ScaleOf(features)));  // 0 changes nothing
        const auto parent = reinterpret_cast<std::uintptr_t>(Feature<void>(features, LV2_UI__parent));
        if (parent == 0) return ui.release();  // waits to be shown
        ui->ResizeBy(Feature<LV2UI_Resize>(features, LV2_UI__resize));

        if (!ui->Open(static_cast<std::uint32_t>(parent))) return nullptr;
        // The window's number is what hosts take. NOLINTNEXTLINE(performance-no-int-to-ptr)
        if (widget != nullptr) *widget = reinterpret_cast<LV2UI_Widget>(std::uintptr_t{ui->WindowId()});
        ui->AnnounceSize();
        return ui.release();
    } catch (...) {
        return nullptr;
    }
}

Ui::Ui(std::shared_ptr<Instance> itsInstance, LV2UI_Write_Function itsWrite, LV2UI_Controller itsController)
    : instance(std::move(itsInstance)), write(itsWrite), controller(itsController) {}

Ui::~Ui() {
    Close();
    instance->LeaveWindow();
}

bool Ui::Open(std::uint32_t parent) {
    if (window != nullptr) return true;
    if (instance->HostHasLeft()) return false;
    const ERect size = Size();
    auto made = OuterWindow::Make(parent, static_cast<std::uint16_t>(size.right - size.left),
                                  static_cast<std::uint16_t>(size.bottom - size.top));
    if (made == nullptr || !instance->Object().OpenEditor(made->Id())) return false;
    window = std::move(made);
    isInside = parent != 0;
    instance->Object().sizeWindow = [this](std::int32_t width, std::int32_t height) {
        return Resize(width, height);
    };
    instance->WindowShows(true);
    hasClosed = false;
    shownOver.fill(false);
    return true;
}

void Ui::Close() {
    if (window == nullptr) return;
    instance->WindowShows(false);
    instance->Object().CloseEditor();
    instance->Object().sizeWindow = nullptr;
    window.reset();
}

void Ui::AnnounceSize() {
    const ERect size = Size();
    if (resize != nullptr) resize->ui_resize(resize->handle, size.right - size.left, size.bottom - size.top);
}

// A host that takes no size would cut off what is beyond its own window.
bool Ui::Resize(std::int32_t width, std::int32_t height) {
    if (isInside && (resize == nullptr || resize->ui_resize(resize->handle, width, height) != 0))
        return false;
    window->Resize(static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height));
    return true;
}

bool Ui::Idle() {
    if (window != nullptr && (instance->HostHasLeft() || window->UserHasClosed())) {
        Close();
        hasClosed = true;
    }
    if (hasClosed) return false;
    if (window != nullptr) instance->Object().IdleEditor();
    NotifyHost();
    return true;
}

void Ui::NotifyHost() {
    instance->ChangesForHost().drain([this](std::int32_t index, float value) {
        const auto at = static_cast<std::size_t>(index);
        echoes[at].Await(value, Milliseconds() + timeout);
        shownOver[at] = false;
        if (write != nullptr)
            write(controller, portFirstControl + static_cast<std::uint32_t>(index), sizeof value, 0, &value);
    });
}

void Ui::PortEvent(std::uint32_t port, float value) {
    if (port < portFirstControl || port >= portEar) return;
    const auto at = static_cast<std::size_t>(port - portFirstControl);
    if (!echoes[at].Counts(value, Milliseconds())) return;
    const auto index = static_cast<std::int32_t>(at);
    const bool news = value != instance->Known(index);
    if (news || shownOver[at]) instance->Object().ShowInEditor(index, value);
    shownOver[at] = news;
}
