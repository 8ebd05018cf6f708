#pragma once

#include "pictures/PictureProtocol.h"

#include <functional>

namespace Halvern::UI {

/// Says hello on the descriptor @p output, then answers the requests from @p input by what @p read returns,
/// each time the newest of those that are waiting; it sets the id and the version, and answers by itself if
/// the file is unchanged. Returns true at the end of the input, and false if the input is damaged or the
/// output is closed.
bool serve(int input, int output,
           const std::function<PictureProtocol::Answer(const PictureProtocol::Request& request)>& read);

} // namespace Halvern::UI
