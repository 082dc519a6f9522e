#include "tools/host/picture.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <stdexcept>

#include "tools/host/chord_line.h"
#include "tools/host/note_list.h"

namespace {

// Pixels.
constexpr double rowHeight = 9;
constexpr double leftEdge = 44;     // for the names of the Cs
constexpr double chordHeight = 30;  // for the chord names
constexpr double footHeight = 22;   // for the seconds
constexpr double usualSecond = 80;
constexpr double widest = 8000;  // a long recording is drawn closer

struct Range {
    int lowest = 48;  // MIDI notes, both shown
    int highest = 72;
};

Range RangeOf(const std::vector<HeardNote>& notes, const std::vector<PlayedNote>& played) {
    std::vector<int> pitches;
    pitches.reserve(notes.size() + played.size());
    for (const HeardNote& note : notes) pitches.push_back(note.pitch);
    for (const PlayedNote& note : played) pitches.push_back(note.pitch);
    if (pitches.empty()) return {};
    const auto [low, high] = std::minmax_element(pitches.begin(), pitches.end());
    return {*low - 2, std::max(*high + 2, *low + 12)};
}

// The twelve pitch classes around the colour circle, in fifths, so that related notes have related colours.
void SetPitchColour(cairo_t* context, int pitch) {
    const double hue = (pitch * 7 % 12) / 12.0 * 6;
    const auto channel = [hue](double offset) {
        const double k = std::fmod(offset + hue, 6);
        return 0.86 - 0.62 * std::clamp(std::min(k, 4 - k), 0.0, 1.0);
    };
    cairo_set_source_rgb(context, channel(5), channel(3), channel(1));
}

class Roll {
public:
    explicit Roll(const Take& source)
        : take(source),
          notes(PairNotes(source)),
          range(RangeOf(notes, source.played)),
          seconds(std::max(Seconds(take, take.length), 1.0)),
          perSecond(std::min(usualSecond, (widest - leftEdge) / seconds)),
          rows(range.highest - range.lowest + 1),
          width(std::ceil(leftEdge + seconds * perSecond) + 8),
          height(chordHeight + rows * rowHeight + footHeight),
          surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(width),
                                             static_cast<int>(height)),
                  cairo_surface_destroy),
          context(cairo_create(surface.get()), cairo_destroy) {}

    std::string Png() {
        DrawRows();
        DrawSeconds();
        DrawPlayed();
        DrawNotes();
        DrawChords();
        std::string bytes;
        const cairo_status_t status = cairo_surface_write_to_png_stream(surface.get(), Append, &bytes);
        if (status != CAIRO_STATUS_SUCCESS)
            throw std::runtime_error(std::string("the picture cannot be drawn: ") +
                                     cairo_status_to_string(status));
        return bytes;
    }

private:
    static cairo_status_t Append(void* bytes, const unsigned char* data, unsigned length) {
        static_cast<std::string*>(bytes)->append(reinterpret_cast<const char*>(data), length);
        return CAIRO_STATUS_SUCCESS;
    }

    double X(double time) const { return leftEdge + time * perSecond; }
    double Y(int pitch) const { return chordHeight + (range.highest - pitch) * rowHeight; }
    void Rectangle(double x, double y, double w, double h) {
        cairo_rectangle(context.get(), x, y, w, h);
        cairo_fill(context.get());
    }
    void Text(double x, double y, const std::string& text, double size) {
        cairo_select_font_face(context.get(), "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                               CAIRO_FONT_WEIGHT_NORMAL);
        cairo_set_font_size(context.get(), size);
        cairo_move_to(context.get(), x, y);
        cairo_show_text(context.get(), text.c_str());
    }

    void DrawRows() {
        cairo_set_source_rgb(context.get(), 1, 1, 1);
        cairo_paint(context.get());
        for (int pitch = range.lowest; pitch <= range.highest; ++pitch) {
            const int pitchClass = pitch % 12;
            const bool black =
                pitchClass == 1 || pitchClass == 3 || pitchClass == 6 || pitchClass == 8 || pitchClass == 10;
            const double shade = black ? 0.93 : 0.975;
            cairo_set_source_rgb(context.get(), shade, shade, shade + 0.02);
            Rectangle(leftEdge, Y(pitch), width - leftEdge - 8, rowHeight - 1);
            if (pitchClass != 0) continue;
            cairo_set_source_rgb(context.get(), 0.35, 0.42, 0.5);
            Text(12, Y(pitch) + rowHeight - 1, NoteName(pitch), 10);
        }
    }

    void DrawSeconds() {
        const int step = perSecond >= 30 ? 1 : perSecond >= 6 ? 5 : 60;
        for (int second = 0; second <= static_cast<int>(seconds); second += step) {
            cairo_set_source_rgb(context.get(), 0.8, 0.83, 0.87);
            Rectangle(X(second), chordHeight, 1, rows * rowHeight);
            cairo_set_source_rgb(context.get(), 0.35, 0.42, 0.5);
            Text(X(second) + 2, height - 8, std::to_string(second) + " s", 10);
        }
    }

    void DrawPlayed() {
        cairo_set_source_rgb(context.get(), 0.7, 0.73, 0.78);
        for (const PlayedNote& note : take.played)
            Rectangle(X(note.begin), Y(note.pitch), std::max(X(note.end) - X(note.begin), 2.0),
                      rowHeight - 1);
    }

    // Narrower than what was played, which shows around it.
    void DrawNotes() {
        const double inset = take.played.empty() ? 0 : 2;
        for (const HeardNote& note : notes) {
            SetPitchColour(context.get(), note.pitch);
            const double x = X(Seconds(take, note.begin));
            Rectangle(x, Y(note.pitch) + inset, std::max(X(Seconds(take, note.end)) - x, 2.0),
                      rowHeight - 1 - 2 * inset);
        }
    }

    // Names that stand for a moment only, as at the attack of a chord, would crowd out the others.
    void DrawChords() {
        constexpr double shortest = 0.25;  // seconds
        cairo_set_source_rgb(context.get(), 0.17, 0.4, 0.55);
        const std::vector<ChordChange> line = ChordLine(take);
        for (std::size_t i = 0; i < line.size(); ++i) {
            const double end = i + 1 < line.size() ? line[i + 1].time : seconds;
            if (end - line[i].time >= shortest) Text(X(line[i].time), chordHeight - 10, line[i].name, 13);
        }
    }

    const Take& take;
    const std::vector<HeardNote> notes;
    const Range range;
    const double seconds;
    const double perSecond;  // pixels
    const int rows;
    const double width, height;
    const std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> surface;
    const std::unique_ptr<cairo_t, void (*)(cairo_t*)> context;
};

}  // namespace

std::string PianoRoll(const Take& take) {
    return Roll(take).Png();
}
