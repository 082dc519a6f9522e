// What a user types for a parameter, as the locale of the host reads it.
#include <cerrno>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <locale>
#include <string>

#include "tests/support/temp_folder.h"
#include "torture/row.h"
#include "torture/rows/plug_in.h"

namespace {

constexpr std::uint64_t batch = 20;  // one locale a process
constexpr int textsPerCase = 1000;

// Null is the user's own. The others are made from the system's definitions.
constexpr const char* localeNames[] = {"C", "de_DE", "fa_IR", "tr_TR", "C.UTF-8", nullptr};

void MakeLocale(Trial& trial, const TempFolder& folder, const std::string& name) {
    const std::string command = "localedef --no-archive -i " + name + " -f UTF-8 '" + (folder / name) + "'";
    trial.Require(std::system(command.c_str()) == 0, "no locale " + name + ": package locales?");
    setenv("LOCPATH", folder.path.c_str(), 1);
}

// The host takes the locale for its own numbers in C, and in every other process for those of C++ too.
void EnterLocale(Trial& trial) {
    static bool entered = false;
    if (std::exchange(entered, true)) return;
    const std::uint64_t process = trial.number / batch;
    const char* const name = localeNames[process % std::size(localeNames)];
    const TempFolder folder;
    const bool made = name != nullptr && name[0] != 'C';
    if (made) MakeLocale(trial, folder, name);
    trial.Require(std::setlocale(LC_ALL, name != nullptr ? name : "") != nullptr || name == nullptr,
                  "the locale cannot be set");
    if (process / std::size(localeNames) % 2 == 0) return;
    try {
        std::locale::global(std::locale(name != nullptr ? name : ""));
    } catch (const std::runtime_error&) {  // the user's may be none
        trial.Require(name == nullptr, "the locale cannot be set");
    }
}

// --- what is expected: numbers read character by character ---

struct Numerals {
    Numerals() {
        const auto& facet = std::use_facet<std::numpunct<char>>(std::locale());
        point = facet.decimal_point();
        groups = facet.grouping();
        if (!groups.empty() && groups[0] > 0) separator = facet.thousands_sep();
    }
    bool Separates(char character) const { return separator != '\0' && character == separator; }

    char point;
    char separator = '\0';  // none unless digits are grouped
    std::string groups;
};

struct Number {
    std::string plain;  // as C writes it; empty where it is none
    bool grouped = true;
};

// Whether the sizes of groups of digits, from the left, are those of the locale: each exact but the first.
// The standard library counts them in a char, which long groups wrap.
bool GroupsFit(const std::string& sizes, const std::string& groups) {
    if (sizes.size() < 2) return true;
    for (std::size_t fromRight = 0; fromRight < sizes.size(); ++fromRight) {
        const char due = groups[std::min(fromRight, groups.size() - 1)];
        const char size = sizes[sizes.size() - 1 - fromRight];
        if (fromRight + 1 == sizes.size() ? due > 0 && size > due : size != due) return false;
    }
    return true;
}

class TypedNumber {
public:
    explicit TypedNumber(const std::string& typed) : text(typed) {
        while (At() != '\0' && std::isspace(At(), std::locale())) ++at;
        if ((At() == '+' || At() == '-') && !numerals.Separates(At()) && At() != numerals.point) Take();
    }
    // False where it is no number. Whatever stands behind it is not looked at.
    bool Whole(int& value) {
        if (!Digits()) return false;
        char* end = nullptr;
        errno = 0;
        const long long read = std::strtoll(plain.c_str(), &end, 10);
        if (errno != 0 || read < INT_MIN || read > INT_MAX) return false;
        value = static_cast<int>(read);
        return GroupsFit(sizes, numerals.groups);
    }
    bool Real(float& value) {
        const bool digits = Digits();
        bool mantissa = digits;
        if (broken) return false;
        if (At() == numerals.point && At() != '\0') {
            ++at;
            plain += '.';
            while (IsDigit()) Take(), mantissa = true;
        }
        if (!mantissa) return false;
        if (At() == 'e' || At() == 'E') {
            Take();
            if (At() == '+' || At() == '-') Take();
            if (!IsDigit()) return false;
            while (IsDigit()) Take();
        }
        static const locale_t classic = newlocale(LC_ALL_MASK, "C", nullptr);
        value = strtof_l(plain.c_str(), nullptr, classic);
        return std::isfinite(value) && GroupsFit(sizes, numerals.groups);
    }

private:
    char At() const { return at < text.size() ? text[at] : '\0'; }
    bool IsDigit() const { return At() >= '0' && At() <= '9'; }
    void Take() { plain += text[at++]; }
    // Digits in groups. A separator without a digit before it makes it no number at all.
    bool Digits() {
        bool any = false;
        std::size_t size = 0;
        for (; IsDigit() || numerals.Separates(At()); any = true) {
            if (IsDigit()) {
                Take(), ++size;
            } else if (size > 0) {
                sizes += static_cast<char>(size);
                size = 0, ++at;
            } else {
                broken = true;
                return false;
            }
        }
        sizes += static_cast<char>(size);
        return any;
    }

    const Numerals numerals;
    const std::string text;
    std::size_t at = 0;
    std::string plain, sizes;
    bool broken = false;
};

// What parameter `index` is to be after `text` was typed, if that is accepted.
bool Accepted(std::int32_t index, const std::string& text, float& value) {
    float number = 0;
    int whole = 0;
    switch (index) {
        case 0:
            if (!TypedNumber(text).Real(number) || !(number >= 0.0F && number <= 1.0F)) return false;
            value = 1.0F - number;
            return true;
        case 1:
            if (!TypedNumber(text).Real(number) || !(number >= -40.0F && number <= 0.0F)) return false;
            value = number * -0.025F;
            return true;
        case 2:
            if (!TypedNumber(text).Whole(whole) || static_cast<signed char>(whole & 0xFF) <= 0) return false;
            value = static_cast<float>(whole & 0xFF) / 127.0F + 0.007F;
            return true;
        default: return false;
    }
}

// --- what is typed ---

std::string AnyText(Trial& trial) {
    constexpr const char* pieces[] = {
        "0",   "1",   "5",   "9",        "12", "127", "-",  "+", ".",   ",",      "'",        "e",   "E",
        "e-1", "1e9", "0.5", " ",        "\t", "\n",  "dB", "x", "0x",  "inf",    "nan",      "000", "1.000",
        "٫",   "٬",   "۵",   "\xC2\xA0", "%",  "i",   "ı",  "İ", "-40", "-39,99", "1,000,000"};
    std::string text;
    for (std::uint64_t left = trial.Below(8); left > 0; --left) switch (trial.Below(12)) {
            case 0: text += static_cast<char>(trial.Below(255) + 1); break;
            case 1: text += std::string(trial.Below(trial.OneIn(20) ? 5000 : 20), '0'); break;
            case 2:
                text += std::to_string(static_cast<std::int64_t>(trial.random()) >> trial.Below(64));
                break;
            case 3: text += Numerals().point; break;
            case 4: text += std::to_string(trial.Below(1000)) + Numerals().separator + "000"; break;
            default: text += pieces[trial.Below(std::size(pieces))];
        }
    return text.substr(0, text.find('\0'));
}

void TryTyped(Trial& trial) {
    EnterLocale(trial);
    const std::string locale = std::setlocale(LC_ALL, nullptr);
    PlugIn plugIn;
    for (int count = 0; count < textsPerCase; ++count) {
        std::string text = AnyText(trial);
        const auto index = static_cast<std::int32_t>(trial.Below(4));
        float due = plugIn.effect->getParameter(plugIn.effect, index);
        const bool accepted = Accepted(index, text, due);
        const std::string told = "parameter " + std::to_string(index) + ", typed <" +
                                 text.substr(text.size() > 500 ? text.size() - 500 : 0) + ">: ";
        trial.Require((plugIn.Call(effString2Parameter, index, 0, text.data()) != 0) == accepted,
                      told + (accepted ? "refused" : "accepted"));
        trial.Require(plugIn.effect->getParameter(plugIn.effect, index) == due, told + "another value");
    }
    trial.Require(locale == std::setlocale(LC_ALL, nullptr), "the host's locale has changed");
}

const Registered typed({"PAR-5", "reads typed numbers by the host's locale, and leaves that alone",
                        inRelease | inAddress, 10000, batch, 20, TryTyped, 150});

}  // namespace
