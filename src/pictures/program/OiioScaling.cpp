#include "pictures/program/OiioScaling.h"

#include <OpenImageIO/imagebufalgo.h>
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace Halvern::UI {

using namespace OIIO;

namespace {

// Rows that are read at a time: several of the blocks that files are compressed in, one for each thread.
constexpr int RowsAtATime = 256;

// Rows are read in multiples of this, if the file has no tiles, so that hardly a compressed block is read
// twice.
constexpr int RowsOfABlock = 32;

// A strip of rows over the whole width of a picture, which moves down. No row is read twice.
class Strip
{
public:
    Strip(ImageInput& input, const OiioPart& part);

    // Moves the strip to the rows from first to last, last not included, as far as the file has them.
    bool moveTo(int first, int last);
    bool isEmpty() const { return m_first == m_last; }
    // The rows, within the display window of the whole picture. Valid until the strip moves.
    ImageBuf rows() { return rowsFrom(m_first); }

private:
    ImageBuf rowsFrom(int first);
    bool read(int last);

    ImageInput& m_input;
    const OiioPart& m_part;
    const bool m_isUnassociated;
    ImageSpec m_spec;
    size_t m_rowBytes = 0;
    int m_first; // the rows of the file in m_bytes
    int m_last;
    std::vector<char> m_bytes;
};

Strip::Strip(ImageInput& input, const OiioPart& part)
    : m_input(input)
    , m_part(part)
    , m_isUnassociated(part.hasAlpha() && part.spec.get_int_attribute("oiio:UnassociatedAlpha"))
    , m_spec(part.spec.width, part.spec.height, part.channelCount, part.spec.format)
    , m_first(part.spec.y)
    , m_last(part.spec.y)
{
    m_spec.x = part.spec.x;
    m_spec.full_x = part.spec.full_x;
    m_spec.full_y = part.spec.full_y;
    m_spec.full_width = part.spec.full_width;
    m_spec.full_height = part.spec.full_height;
    m_spec.alpha_channel = part.channels[3];
    // Only these are scaled as they are.
    const auto type = TypeDesc::BASETYPE(m_spec.format.basetype);
    const bool isScaledAsItIs = type == TypeDesc::UINT8 || type == TypeDesc::UINT16 || type == TypeDesc::HALF;
    if (!isScaledAsItIs || !part.spec.channelformats.empty())
        m_spec.set_format(TypeDesc::FLOAT);
    m_rowBytes = size_t(m_spec.scanline_bytes());
}

bool Strip::moveTo(int first, int last)
{
    const int top = m_part.spec.y;
    const int bottom = top + m_part.spec.height;
    const int block = m_part.spec.tile_width > 0 ? m_part.spec.tile_height : RowsOfABlock;
    const auto blockStart = [&](int row) { return top + (row - top) / block * block; };
    first = std::clamp(first, top, bottom);
    last = std::clamp(last, top, bottom);
    if (first < m_last) {
        const int dropped = std::max(0, first - m_first);
        m_bytes.erase(m_bytes.begin(), m_bytes.begin() + std::ptrdiff_t(size_t(dropped) * m_rowBytes));
        m_first += dropped;
    } else {
        m_bytes.clear();
        m_first = m_last = std::max(m_last, blockStart(first));
    }
    return last <= m_last || read(std::min(bottom, blockStart(last - 1) + block));
}

// Adds the rows up to last.
bool Strip::read(int last)
{
    const int first = std::exchange(m_last, last);
    m_bytes.resize(size_t(m_last - m_first) * m_rowBytes);
    char* to = m_bytes.data() + size_t(first - m_first) * m_rowBytes;
    const ImageSpec& spec = m_part.spec;
    const int channel = m_part.firstChannel;
    const int channelEnd = channel + m_part.channelCount;
    const bool isRead =
        spec.tile_width > 0
            ? m_input.read_tiles(m_part.subimage, m_part.level, spec.x, spec.x + spec.width, first, last,
                                 spec.z, spec.z + 1, channel, channelEnd, m_spec.format, to)
            : m_input.read_scanlines(m_part.subimage, m_part.level, first, last, spec.z, channel, channelEnd,
                                     m_spec.format, to);
    if (isRead && m_isUnassociated) {
        ImageBuf rows = rowsFrom(first);
        return ImageBufAlgo::premult(rows, rows);
    }
    return isRead;
}

ImageBuf Strip::rowsFrom(int first)
{
    ImageSpec spec = m_spec;
    spec.y = first;
    spec.height = m_last - first;
    return {spec, m_bytes.data() + size_t(first - m_first) * m_rowBytes};
}

// The pixels of a scaled side that depend on count pixels from begin on: the first, and the one after the
// last.
std::pair<int, int> covered(int begin, int count, double ratio, int side)
{
    const double first = std::floor(begin / ratio) - 2;
    const double last = std::ceil((double(begin) + count) / ratio) + 2;
    return {int(std::clamp(first, 0.0, double(side))), int(std::clamp(last, 0.0, double(side)))};
}

} // namespace

ImageBuf readScaled(ImageInput& input, const OiioPart& part, int width, int height)
{
    const ImageSpec& from = part.spec;
    const double xRatio = double(from.full_width) / width;
    const double yRatio = double(from.full_height) / height;
    // A box is an average, but uneven between nearly equal sizes.
    const bool isNear = std::min(xRatio, yRatio) < 2 && std::max(xRatio, yRatio) > 1;
    const char* filter = isNear ? "triangle" : "box";

    ImageSpec to(width, height, part.channelCount, TypeDesc::FLOAT);
    to.alpha_channel = part.channels[3];
    ImageBuf scaled(to);
    Strip strip(input, part);
    // Only where the data window is: a display window can be millions of pixels larger.
    const auto [left, right] = covered(from.x - from.full_x, from.width, xRatio, width);
    const auto [top, bottom] = covered(from.y - from.full_y, from.height, yRatio, height);
    const int rowsAtATime = std::max(1, int(RowsAtATime / yRatio));
    for (int row = top; row < bottom && left < right; row += rowsAtATime) {
        const int rowEnd = std::min(bottom, row + rowsAtATime);
        const int first = from.full_y + int(std::floor((row - 1) * yRatio)) - 1;
        const int last = from.full_y + int(std::ceil((rowEnd + 1) * yRatio)) + 1;
        if (!strip.moveTo(first, last)) {
            scaled.errorfmt("{}", input.geterror());
            break;
        }
        if (strip.isEmpty())
            continue;
        const ROI band(left, right, row, rowEnd, 0, 1, 0, part.channelCount);
        if (!ImageBufAlgo::resize(scaled, strip.rows(), filter, 0, band))
            break;
    }
    return scaled;
}

} // namespace Halvern::UI
