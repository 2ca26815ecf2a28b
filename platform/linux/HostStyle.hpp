#pragma once

// How each kind of panel is given the status item, since none shows picture, text and colour everywhere. A new kind
// of panel is a line in the table of known processes, or one more style.

#include "platform/linux/Picture.hpp"
#include "platform/linux/Resources.hpp"
#include "platform/linux/StatusContent.hpp"

#include <string_view>
#include <vector>

namespace platform::freedesktop {

enum class HostStyle {
    TextInPicture,   ///< A square picture with the text above a bar of the time left.
    LabelBesideIcon, ///< The program's own picture, and a label beside it.
};

/// The style for the panel that runs as a process of that name, as far as the kernel keeps it (15 characters).
HostStyle styleOfHost(std::string_view processName);

/// Whether the panel is to be offered a label.
bool hasLabel(HostStyle style);

/// Whether a panel that shows the picture of `shown` had better fetch the one of `content`.
bool needsNewPicture(HostStyle style, const StatusContent& shown, const StatusContent& content);

/// The picture in all the sizes that panels like to choose from.
std::vector<Picture> picturesFor(HostStyle style, const StatusContent& content, const Resources& resources);

} // namespace platform::freedesktop
