// The streams' buffers, for runs of fields that are known to fit.
#ifndef BCI_CODEC_STREAM_ACCESS_H
#define BCI_CODEC_STREAM_ACCESS_H

#include "stream.h"

#include <algorithm>
#include <cstddef>

namespace bci::codec
{

struct StreamAccess
{
    // Whether so much fits. Nothing never does: the streams are left alone then.
    static bool hasRoom(const commonStream::ostreambase& stream, std::size_t size)
    {
        const unsigned int position = stream.m_currentWritePosition;
        return size != 0 && position < stream.m_bufferLength && stream.m_bufferLength - position >= size;
    }

    static bool atStart(const commonStream::ostreambase& stream)
    {
        return stream.m_currentWritePosition == 0;
    }

    static char* next(const commonStream::ostreambase& stream)
    {
        return stream.m_bufferPtr + stream.m_currentWritePosition;
    }

    // Counts what was written up to here.
    static void wroteTo(commonStream::ostreambase& stream, const char* end)
    {
        const auto position = static_cast<unsigned int>(end - stream.m_bufferPtr);
        stream.m_currentWritePosition = position;
        stream.m_length = std::max(stream.m_length, position);
        if (position == stream.m_bufferLength)
        {
            stream.m_statusFlags |= kEof;
        }
    }

    // Bytes that can be read: none of a stream that is not good.
    static unsigned int left(const commonStream::istreambase& stream)
    {
        const unsigned int end = std::min(stream.m_length, stream.m_bufferLength);
        const unsigned int position = stream.m_currentReadPosition;
        return stream.m_statusFlags == 0 && position < end ? end - position : 0;
    }

    static bool atStart(const commonStream::istreambase& stream)
    {
        return stream.m_currentReadPosition == 0;
    }

    static const char* next(const commonStream::istreambase& stream)
    {
        return stream.m_bufferPtr + stream.m_currentReadPosition;
    }

    // Counts what was read up to here.
    static void readTo(commonStream::istreambase& stream, const char* end)
    {
        const auto position = static_cast<unsigned int>(end - stream.m_bufferPtr);
        stream.m_currentReadPosition = position;
        if (position == stream.m_length)
        {
            stream.m_statusFlags |= kEof;
        }
    }

    // The last character that was delivered is a single one.
    static void countOne(commonStream::istream_text& stream)
    {
        stream.m_lastReadCount = 1;
    }

private:
    static constexpr unsigned int kEof = 1;
};

} // namespace bci::codec

#endif
