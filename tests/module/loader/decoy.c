// A library that has the toolkit's symbols, as another plug-in's copy of it may show them to all. Whoever is
// led here ends the process.
#include <stdlib.h>

#define DECOY(name)                                         \
    __attribute__((visibility("default"))) void name(void); \
    void name(void) {                                       \
        abort();                                            \
    }

DECOY(_ZN6VSTGUI4initEPv)
DECOY(_ZN6VSTGUI4exitEv)
DECOY(_ZN6VSTGUI18getPlatformFactoryEv)
DECOY(_ZN6VSTGUI6CFrameC1ERKNS_5CRectEPNS_22VSTGUIEditorInterfaceE)
DECOY(_ZN6VSTGUI6CPointC1Edd)
DECOY(_Z10OpenPluginPFlP7AEffectiilPvfE)
DECOY(_Z10NoteMemoryv)
DECOY(VSTPluginMain)
