// The two alerts are one design with different data: the properties of the
// window and of its six controls, applied in this order when a window is built.
#pragma once

#include <array>
#include <cstdint>

namespace alerts {

enum class ControlClass { kCanvas, kLabel, kPushButton };
enum Lock : uint8_t { kLockLeft = 1, kLockTop = 2, kLockRight = 4, kLockBottom = 8 };

struct ControlProperties {
    const char* name;
    ControlClass controlClass;
    int left, top, width, height;  // points from the window's top left
    uint8_t locks;
    int tabIndex;
    const char* text;  // the label or caption; nullptr for the canvas
    bool bold;
    const char* fontName;  // "System" or "SmallSystem"
    bool isDefault;        // pressed by Return
    bool isCancel;         // pressed by Escape
};

struct WindowProperties {
    int width, height;
    int minimumWidth, minimumHeight, maximumWidth, maximumHeight;
    int type;  // 1: movable modal
    const char* title;
    bool hasCloseButton, hasMaximizeButton, hasMinimizeButton, resizeable;
    int defaultLocation;  // 3: centred on the screen of the parent, here the main screen
};

struct AlertLayout {
    WindowProperties window;
    std::array<ControlProperties, 6> controls;  // in the order they are made
    int64_t launchCommand;                      // what btnLaunch hands the companion
    const char* sampleValue;  // a typical text for "^0", to choose the size of a point by
};

extern const AlertLayout kTrashSizeLayout;
extern const AlertLayout kTrashUninstallLayout;

}  // namespace alerts
