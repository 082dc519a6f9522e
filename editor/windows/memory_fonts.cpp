#include "editor/windows/memory_fonts.h"

#include <dwrite.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "base/windows/wide.h"
#include "editor/fonts.h"

namespace VSTGUI {
extern IDWriteFontCollection* (*ownFonts)(IDWriteFactory*);  // comes with cmake/toolkit/vstgui-windows.patch
IDWriteFactory* getDWriteFactory();
}  // namespace VSTGUI

namespace {

// DirectWrite reads fonts through objects of the program. These stand for bytes of the module and live as
// long as it, so nobody counts who uses them.
template <typename Interface>
class Lent : public Interface {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        const bool known = id == __uuidof(IUnknown) || id == __uuidof(Interface);
        *object = known ? static_cast<Interface*>(this) : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

protected:
    ~Lent() = default;
};

class Stream final : public Lent<IDWriteFontFileStream> {
public:
    HRESULT STDMETHODCALLTYPE ReadFileFragment(const void** begin, UINT64 offset, UINT64 length,
                                               void** context) override {
        *begin = nullptr;
        *context = nullptr;
        const auto size = static_cast<UINT64>(font.end - font.begin);
        if (offset > size || length > size - offset) return E_FAIL;
        *begin = font.begin + offset;
        return S_OK;
    }
    void STDMETHODCALLTYPE ReleaseFileFragment(void*) override {}
    HRESULT STDMETHODCALLTYPE GetFileSize(UINT64* size) override {
        *size = static_cast<UINT64>(font.end - font.begin);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetLastWriteTime(UINT64* time) override {
        *time = 0;
        return S_OK;
    }

    Font font = {};
};

constexpr UINT32 mostFonts = 4;
Stream streams[mostFonts];  // by the key of a font, its number

UINT32 FontCount() {
    return static_cast<UINT32>(std::min<std::size_t>(AllFonts().size(), mostFonts));
}

class FileLoader final : public Lent<IDWriteFontFileLoader> {
public:
    HRESULT STDMETHODCALLTYPE CreateStreamFromKey(const void* key, UINT32 size,
                                                  IDWriteFontFileStream** stream) override {
        *stream = nullptr;
        const UINT32 number = size == sizeof number ? *static_cast<const UINT32*>(key) : mostFonts;
        if (number >= FontCount()) return E_INVALIDARG;
        streams[number].font = AllFonts()[number];
        *stream = &streams[number];
        return S_OK;
    }
} fileLoader;

// Goes through the fonts once; a collection is made only once at a time.
class Enumerator final : public Lent<IDWriteFontFileEnumerator> {
public:
    HRESULT STDMETHODCALLTYPE MoveNext(BOOL* there) override {
        *there = next < FontCount();
        if (*there) ++next;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetCurrentFontFile(IDWriteFontFile** file) override {
        const UINT32 number = next - 1;
        return factory->CreateCustomFontFileReference(&number, sizeof number, &fileLoader, file);
    }

    IDWriteFactory* factory = nullptr;
    UINT32 next = 0;
} enumerator;

class CollectionLoader final : public Lent<IDWriteFontCollectionLoader> {
public:
    HRESULT STDMETHODCALLTYPE CreateEnumeratorFromKey(IDWriteFactory* factory, const void*, UINT32,
                                                      IDWriteFontFileEnumerator** files) override {
        enumerator.factory = factory;
        enumerator.next = 0;
        *files = &enumerator;
        return S_OK;
    }
} collectionLoader;

IDWriteFactory* factoryInUse = nullptr;  // that knows the loaders
IDWriteFontCollection* collection = nullptr;

// Where this fails, a font of the system stands in.
IDWriteFontCollection* OwnFonts(IDWriteFactory* factory) {
    if (factoryInUse != nullptr || factory == nullptr) return collection;
    factoryInUse = factory;
    factory->AddRef();
    constexpr UINT32 key = 0;
    if (SUCCEEDED(factory->RegisterFontFileLoader(&fileLoader)) &&
        SUCCEEDED(factory->RegisterFontCollectionLoader(&collectionLoader)))
        factory->CreateCustomFontCollection(&collectionLoader, &key, sizeof key, &collection);
    return collection;
}

// DirectWrite takes the width out of the family's name: Roboto, whose only faces are condensed, or all of it.
std::string NameOfFamily(IDWriteFontCollection* fonts) {
    std::string name;
    IDWriteFontFamily* first = nullptr;
    if (fonts == nullptr || FAILED(fonts->GetFontFamily(0, &first))) return name;
    IDWriteLocalizedStrings* names = nullptr;
    WCHAR text[64] = {};
    if (SUCCEEDED(first->GetFamilyNames(&names))) {
        if (SUCCEEDED(names->GetString(0, text, std::size(text)))) name = Narrow(text);
        names->Release();
    }
    first->Release();
    return name;
}

}  // namespace

const char* OwnFontFamily() {
    static std::string name;
    if (name.empty()) name = NameOfFamily(OwnFonts(VSTGUI::getDWriteFactory()));
    return name.empty() ? "Arial" : name.c_str();
}

void UseOwnFonts() {
    VSTGUI::ownFonts = OwnFonts;
}

void ForgetOwnFonts() {
    if (factoryInUse == nullptr) return;
    if (collection != nullptr) collection->Release();
    collection = nullptr;
    factoryInUse->UnregisterFontCollectionLoader(&collectionLoader);
    factoryInUse->UnregisterFontFileLoader(&fileLoader);
    factoryInUse->Release();
    factoryInUse = nullptr;
}
