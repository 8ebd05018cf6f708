#include "pictures/program/OiioScaling.h"

#include <OpenImageIO/parallel.h>
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

// Parts of a strip that are scaled at the same time.
constexpr int MostTasks = 16;

// A strip of rows over the whole width of a picture, which moves down. No row is read twice.
class Strip
{
public:
    Strip(ImageInput& input, const OiioPart& part);

    // Moves the strip to the rows from first to last, last not included, as far as the file has them. Rows
    // are counted from the first one of the file.
    bool moveTo(int first, int last);
    // Floats of a row.
    size_t rowSize() const { return m_rowSize; }
    // Writes a row of the strip as floats, multiplied by alpha.
    void copyRow(int row, float* to) const;

private:
    bool read(int last);

    ImageInput& m_input;
    const OiioPart& m_part;
    const bool m_isUnassociated;
    const size_t m_rowSize;
    TypeDesc m_type;
    size_t m_rowBytes = 0;
    int m_first = 0; // the rows in m_bytes
    int m_last = 0;
    std::vector<char> m_bytes;
};

Strip::Strip(ImageInput& input, const OiioPart& part)
    : m_input(input)
    , m_part(part)
    , m_isUnassociated(part.hasAlpha() && part.spec.get_int_attribute("oiio:UnassociatedAlpha"))
    , m_rowSize(size_t(part.spec.width) * size_t(part.channelCount))
    , m_type(part.spec.format)
{
    // Only these are quickly made floats of, and take less memory.
    const auto type = TypeDesc::BASETYPE(m_type.basetype);
    const bool isSmall = type == TypeDesc::UINT8 || type == TypeDesc::UINT16 || type == TypeDesc::HALF;
    if (!isSmall || !part.spec.channelformats.empty())
        m_type = TypeDesc::FLOAT;
    m_rowBytes = m_rowSize * m_type.size();
}

bool Strip::moveTo(int first, int last)
{
    const int bottom = m_part.spec.height;
    const int block = m_part.spec.tile_width > 0 ? m_part.spec.tile_height : RowsOfABlock;
    if (first < m_last) {
        const int dropped = std::max(0, first - m_first);
        m_bytes.erase(m_bytes.begin(), m_bytes.begin() + std::ptrdiff_t(size_t(dropped) * m_rowBytes));
        m_first += dropped;
    } else {
        m_bytes.clear();
        m_first = m_last = std::max(m_last, first / block * block);
    }
    return last <= m_last || read(std::min(bottom, (last - 1) / block * block + block));
}

// Adds the rows up to last.
bool Strip::read(int last)
{
    const ImageSpec& spec = m_part.spec;
    const int begin = spec.y + std::exchange(m_last, last);
    const int end = spec.y + last;
    m_bytes.resize(size_t(m_last - m_first) * m_rowBytes);
    char* to = m_bytes.data() + size_t(begin - spec.y - m_first) * m_rowBytes;
    const int channel = m_part.firstChannel;
    const int channelEnd = channel + m_part.channelCount;
    if (spec.tile_width > 0)
        return m_input.read_tiles(m_part.subimage, m_part.level, spec.x, spec.x + spec.width, begin, end,
                                  spec.z, spec.z + 1, channel, channelEnd, m_type, to);
    return m_input.read_scanlines(m_part.subimage, m_part.level, begin, end, spec.z, channel, channelEnd,
                                  m_type, to);
}

void Strip::copyRow(int row, float* to) const
{
    const char* from = m_bytes.data() + size_t(row - m_first) * m_rowBytes;
    convert_pixel_values(m_type, from, TypeDesc::FLOAT, to, int(m_rowSize));
    if (!m_isUnassociated)
        return;
    const int alpha = m_part.channels[3];
    for (const float* end = to + m_rowSize; to < end; to += m_part.channelCount) {
        for (int channel = 0; channel < m_part.channelCount; ++channel)
            to[channel] *= channel == alpha ? 1 : to[alpha];
    }
}

// The pixels of the file that a pixel of a scaled side covers, and how much of the pixel they are.
struct Cover
{
    int first = 0;
    int last = -1; // included; nothing is covered if it is less than the first
    float firstWeight = 0;
    float middleWeight = 0; // of each between the first and the last
    float lastWeight = 0;   // 0 if there is only one

    float weightOf(int index) const
    {
        return index == first ? firstWeight : index == last ? lastWeight : middleWeight;
    }
};

// The file has count pixels, which begin offset pixels after the beginning of the display window.
std::vector<Cover> coversOf(int size, int fullSize, int offset, int count)
{
    constexpr double Rounding = 1e-6;
    const double ratio = double(fullSize) / size;
    std::vector<Cover> covers(size_t(size), Cover{});
    for (int i = 0; i < size; ++i) {
        const double begin = std::max(i * ratio - offset, 0.0);
        const double end = std::min((i + 1) * ratio - offset, double(count));
        if (end - begin < Rounding)
            continue;
        Cover& cover = covers[size_t(i)];
        cover.first = int(begin + Rounding);
        cover.last = std::max(cover.first, int(std::ceil(end - Rounding)) - 1);
        cover.firstWeight = float((std::min(end, cover.first + 1.0) - begin) / ratio);
        cover.middleWeight = float(1 / ratio);
        cover.lastWeight = cover.last > cover.first ? float((end - cover.last) / ratio) : 0;
    }
    return covers;
}

// Scales rows of a strip. One for each task.
class Scaler
{
public:
    Scaler(const Strip& strip, const OiioPart& part, const std::vector<Cover>& columns)
        : m_strip(strip)
        , m_part(part)
        , m_columns(columns)
        , m_row(strip.rowSize())
        , m_narrow(columns.size() * 4)
        , m_sum(columns.size() * 4)
    {
    }

    // The mean of the rows that are covered. Valid until the next call.
    float* scale(const Cover& rows)
    {
        std::fill(m_sum.begin(), m_sum.end(), 0.0F);
        for (int row = rows.first; row <= rows.last; ++row) {
            // Two pixels that follow each other may share a row.
            if (row != m_narrowed) {
                m_strip.copyRow(row, m_row.data());
                narrow();
                m_narrowed = row;
            }
            const float weight = rows.weightOf(row);
            for (size_t i = 0; i < m_sum.size(); ++i)
                m_sum[i] += weight * m_narrow[i];
        }
        if (!m_part.hasAlpha()) {
            for (size_t i = 3; i < m_sum.size(); i += 4)
                m_sum[i] = 1;
        }
        return m_sum.data();
    }

private:
    // Scales m_row into m_narrow.
    void narrow()
    {
        const int channels = m_part.channelCount;
        // The fourth is not used if there is no alpha.
        const std::array<int, 4> places{m_part.channels[0], m_part.channels[1], m_part.channels[2],
                                        std::max(0, m_part.channels[3])};
        float* to = m_narrow.data();
        for (const Cover& cover : m_columns) {
            std::array<float, 4> sum{};
            const float* pixel = m_row.data() + std::ptrdiff_t(cover.first) * channels;
            for (int i = cover.first; i <= cover.last; ++i, pixel += channels) {
                const float weight = cover.weightOf(i);
                for (size_t c = 0; c < 4; ++c)
                    sum[c] += weight * pixel[places[c]];
            }
            to = std::copy(sum.begin(), sum.end(), to);
        }
    }

    const Strip& m_strip;
    const OiioPart& m_part;
    const std::vector<Cover>& m_columns;
    std::vector<float> m_row;
    std::vector<float> m_narrow;
    std::vector<float> m_sum;
    int m_narrowed = -1; // the row in m_narrow
};

} // namespace

std::string readScaled(ImageInput& input, const OiioPart& part, int width, int height, const TakeRow& take)
{
    const ImageSpec& from = part.spec;
    const auto columns = coversOf(width, from.full_width, from.x - from.full_x, from.width);
    const auto rows = coversOf(height, from.full_height, from.y - from.full_y, from.height);
    Strip strip(input, part);
    // Made before the tasks, because these could not tell that there is no memory.
    std::vector<Scaler> scalers(size_t(std::min(height, MostTasks)), Scaler(strip, part, columns));
    const auto tasks = int(scalers.size());
    const int rowsAtATime = std::max(1, int(double(RowsAtATime) * height / from.full_height));
    for (int begin = 0; begin < height; begin += rowsAtATime) {
        const int end = std::min(height, begin + rowsAtATime);
        int first = from.height;
        int last = 0;
        for (int y = begin; y < end; ++y) {
            if (rows[size_t(y)].last < rows[size_t(y)].first)
                continue;
            first = std::min(first, rows[size_t(y)].first);
            last = std::max(last, rows[size_t(y)].last + 1);
        }
        if (first < last && !strip.moveTo(first, last))
            return input.geterror();
        parallel_for(0, tasks, [&](int task) {
            const auto start = [&](int of) { return begin + (end - begin) * of / tasks; };
            for (int y = start(task); y < start(task + 1); ++y)
                take(y, scalers[size_t(task)].scale(rows[size_t(y)]));
        });
    }
    return {};
}

} // namespace Halvern::UI
