#include <lumcommon/streams/LumInflaterStream.h>

#include <gtest/gtest.h>

#include <istream>
#include <iterator>
#include <memory>
#include <string>

#include "support/Deflated.h"

using LumCommon::LumInflaterStream;
using LumCommon::LumInflaterStreamBuf;
using namespace LumTest;

namespace {

std::string readAll(LumInflaterStreamBuf& buffer) { return {std::istreambuf_iterator<char>(&buffer), {}}; }

/// The bytes in a block of their exact size, so that a sanitizer sees a read past their end.
std::string inflateExact(const std::string& data) {
    const std::unique_ptr<char[]> exact(new char[data.size()]);
    data.copy(exact.get(), data.size());
    LumInflaterStreamBuf buffer(exact.get(), data.size(), false);
    return readAll(buffer);
}

TEST(LumInflaterStreamBuf, readsWhatZlibMade) {
    for (const std::size_t size : {0, 4096, 4097, 100000}) {
        SCOPED_TRACE(size);
        const std::string bytes = compressible(size);
        EXPECT_EQ(inflateExact(deflated(bytes, Wrapper::RAW)), bytes);
        EXPECT_EQ(inflateExact(deflated(bytes, Wrapper::RAW) + "what follows"), bytes);
        const std::string one(size, 'x');
        EXPECT_EQ(inflateExact(deflated(one, Wrapper::RAW)), one) << "output is lost that comes after the last input";
    }
}

TEST(LumInflaterStreamBuf, cutAtAnyByteGivesTheWholePiecesBeforeIt) {
    const std::string data = deflated(compressible(9000), Wrapper::RAW);
    for (std::size_t size = 0; size < data.size(); ++size) {
        const std::string cut = data.substr(0, size);
        ASSERT_EQ(inflateExact(cut), delivered(inflated(cut, Wrapper::RAW))) << "cut to " << size;
    }
}

TEST(LumInflaterStreamBuf, aFaultInAnyByteEndsTheStream) {
    const std::string data = deflated(compressible(9000), Wrapper::RAW);
    for (std::size_t place = 0; place < data.size(); ++place) {
        std::string faulty = data;
        faulty[place] = static_cast<char>(faulty[place] ^ (1 << place % 8));
        ASSERT_EQ(inflateExact(faulty), delivered(inflated(faulty, Wrapper::RAW))) << "fault at " << place;
    }
}

TEST(LumInflaterStream, startsAgain) {
    for (const bool copy : {false, true}) {
        SCOPED_TRACE(copy);
        const std::string bytes = compressible(9000);
        auto data = std::make_unique<std::string>(deflated(bytes, Wrapper::RAW));
        LumInflaterStream stream(data->data(), data->size(), copy);
        if (copy) data.reset();
        for (const std::size_t read : {20000, 100, 5000, 20000}) {  // to the end, inside, on, and to the end again
            std::string got(read, '\0');
            stream.read(got.data(), static_cast<std::streamsize>(read));
            got.resize(static_cast<std::size_t>(stream.gcount()));
            EXPECT_EQ(got, bytes.substr(0, read));
            stream.reset();
            EXPECT_TRUE(stream.good());
        }
    }
}

}  // namespace
