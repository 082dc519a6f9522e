#pragma once
#include <cstdint>

// Every colour of the window, light and dark, as 0xRRGGBB: of what is drawn live, and of the pictures. The
// sources in resources/ are light; where they name one of these, cmake/darken.cmake puts the dark one for the
// second set, and refuses a colour that has no row. What they call white is white in both.
struct Shade {
    std::uint32_t light, dark;
};

namespace palette {

// clang-format off
//                                  light     dark
// Grounds.
constexpr Shade groundTop        = {0xf2f8fc, 0x202c38};
constexpr Shade groundBottom     = {0xd3e5f2, 0x151e27};
constexpr Shade panel            = {0xffffff, 0x2d3d4d};  // lets the ground shine through
constexpr Shade panelFrame       = {0xa9c9e0, 0x42586c};
constexpr Shade inset            = {0xe2eff8, 0x22303d};  // a panel within a panel
constexpr Shade plate            = {0xfdfeff, 0x18232e};  // under the chord's name
constexpr Shade frame            = {0x2b658c, 0x4b667d};  // around the picture and the keyboard
constexpr Shade shadow           = {0x123a57, 0x05090d};
constexpr Shade veil             = {0x143250, 0x000000};  // over the window while a message is up

// Texts.
constexpr Shade text             = {0x2c668d, 0xa8d1ee};  // of labels and menus, and small drawings
constexpr Shade faintText        = {0x4a687d, 0xb4c4d0};  // of what is off
constexpr Shade link             = {0x1a69ab, 0x7cc0f5};

// Menus, as they stand on a page and as they open.
constexpr Shade menu             = {0x91d6ee, 0x1d4a63};
constexpr Shade menuFrame        = {0xffffff, 0x5f8199};
constexpr Shade openMenu         = {0xf4fafd, 0x25323f};
constexpr Shade chosen           = {0x2d678e, 0x2f6d99};  // under the entry at the mouse
constexpr Shade chosenText       = {0xffffff, 0xffffff};

// Buttons, off and on.
constexpr Shade buttonTop        = {0xfeffff, 0x3b5064};
constexpr Shade buttonBottom     = {0xd9eaf6, 0x2c3d4e};
constexpr Shade buttonFrame      = {0x8fb6d3, 0x577389};
constexpr Shade onTop            = {0x2c7abc, 0x2c7abc};
constexpr Shade onBottom         = {0x1e5f9e, 0x1e5f9e};
constexpr Shade onFrame          = {0x1b4d7c, 0x4f93c7};
constexpr Shade onMark           = {0x2a7cc0, 0x2a7cc0};
constexpr Shade switchGround     = {0xc3d3df, 0x1b2732};
constexpr Shade switchFrame      = {0x8fa9bc, 0x6f8ba0};
constexpr Shade box              = {0xfffffe, 0x1b2732};  // of a check box, of a field to type in
constexpr Shade warm             = {0xff9646, 0xff9646};
constexpr Shade warmPale         = {0xffb076, 0xffb076};
constexpr Shade yellow           = {0xffff00, 0xffff00};
constexpr Shade recordOff        = {0xe2403a, 0xf0564f};
constexpr Shade recordTop        = {0xff6a5e, 0xff6a5e};
constexpr Shade recordBottom     = {0xd32a25, 0xd32a25};
constexpr Shade recordFrame      = {0x8f1a17, 0xff9a94};
constexpr Shade good             = {0x39a96b, 0x39a96b};
constexpr Shade neutral          = {0x8aa3b5, 0x6f8798};

// Sliders.
constexpr Shade tick             = {0x93bad9, 0x5a788f};
constexpr Shade grooveLow        = {0xdcebf6, 0x1a2733};
constexpr Shade grooveHigh       = {0x4098de, 0x4098de};
constexpr Shade grooveFrame      = {0x7ba6c6, 0x4f6c83};
constexpr Shade wedgeEnd         = {0xfffeff, 0x2a3a49};
constexpr Shade knobTop          = {0xfffeff, 0x8fb0c9};
constexpr Shade knobBottom       = {0xc8dff0, 0x54748d};
constexpr Shade knobMark         = {0x2a7cc1, 0xffffff};

// The equalizer.
constexpr Shade grid             = {0x2c668d, 0x4f7391};
constexpr Shade bar              = {0xffff00, 0xd9b24c};
constexpr Shade barGroundTop     = {0x3f7fb2, 0x1b2b3a};
constexpr Shade barGroundBottom  = {0x2b5f8c, 0x131f2b};
constexpr Shade nightTop         = {0x16324d, 0x16324d};
constexpr Shade nightBottom      = {0x0b1c30, 0x0b1c30};
constexpr Shade moon             = {0xffe9b0, 0xffe9b0};

// The scrolling picture: from silence to the loudest, and a note that sounds. The keyboard beside it.
constexpr Shade quiet            = {0x93bad8, 0x1b2d3d};
constexpr Shade loud             = {0x4098dd, 0x4098dd};
constexpr Shade note             = {0xff9646, 0xff9646};
constexpr Shade whiteKey         = {0xfefefe, 0xbccad5};
constexpr Shade blackKey         = {0x2c668e, 0x1a2935};
constexpr Shade betweenKeys      = {0xa9c9e1, 0x72899b};

// The product's sign.
constexpr Shade discTop          = {0x7cc0f0, 0x7cc0f0};
constexpr Shade discBottom       = {0x2a7cc2, 0x2a7cc2};
// clang-format on

}  // namespace palette
