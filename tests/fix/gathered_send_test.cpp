// A built FIX message goes out as ONE gathered send of its slots over a connected loopback TCP
// pair (WSASend on Windows, sendmsg with an iovec vector on POSIX) and arrives as the bytes of the
// slots in order, with a BodyLength and CheckSum that a receiver's own count confirms.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <thread>
#include <tuple>

#include "VeloraUtils/FixTagCollection.h"
#include "fix_test_messages.h"
#include "platform/Platform.h"

namespace {

namespace vp = velora::platform;

// Reads until `size` bytes arrived or the peer closed.
std::string ReceiveExactly(vp::SocketHandle socket, std::size_t size) {
    std::string out(size, '\0');
    std::size_t got = 0;
    for (long long n = 0; got < size; got += static_cast<std::size_t>(n))
        if ((n = vp::Receive(socket, out.data() + got, size - got)) <= 0) break;
    out.resize(got);
    return out;
}

TEST(GatheredSend, ArrivesAsTheConcatenatedSlots) {
    std::printf("platform backend: %s\n", vp::BackendName());
    // Beyond 1024 slots the list goes out in several calls.
    for (const int extraFields : {0, 1500}) {
        SCOPED_TRACE(extraFields == 0 ? "NewOrderSingle" : "MoreSlotsThanOneVectorHolds");
        // A NewOrderSingle with its per-message values held inside the builder and the rest by reference.
        FixTagCollection b(16, 0x0404, "FIX");
        const std::string clOrdId = "ORD-" + std::to_string(extraFields); // referenced until the send
        b.Append("34=", 3, false, 0);
        b.AppendMsgSeqNumValue(100);
        b.AppendTagSenderCompId("VELORA", 6, 0);
        b.AppendTagTargetCompId("BROKER", 6, 0);
        b.AppendTagUtc(6, 14, 2024, 34567890);
        b.AppendTag("11=", clOrdId.c_str(), 3, static_cast<unsigned int>(clOrdId.size()), 0, true);
        b.AppendUShortTagAsString("54=", '1', 3);
        b.AppendUIntTag("38=", 1500, 3);
        for (const char* field : {"55=MSFT", "40=2", "44=412.35"})
            b.AppendTag(field, field + 3, 3, 0, 0, true);
        for (int f = 0; f < extraFields; ++f) b.AppendTag("58=", "note", 3, 4, 0, true);
        ASSERT_TRUE(b.Finalize("D"));
        const std::string expected = fixtest::Gather(b);
        ASSERT_EQ(expected.size(), b.GetTotalLength());

        vp::SocketHandle sender = vp::kInvalidSocket, receiver = vp::kInvalidSocket;
        ASSERT_TRUE(vp::OpenLoopbackPair(sender, receiver));
        std::string received;
        // The receiver drains concurrently, so a message larger than the socket buffers goes out too.
        std::thread reader([&] { received = ReceiveExactly(receiver, expected.size()); });
        const long long sent = vp::GatherSend(sender, b.GetWsaBufAt(0), b.GetCount());
        vp::CloseSocket(sender); // ends the reader's wait even when the send failed
        reader.join();
        vp::CloseSocket(receiver);
        EXPECT_EQ(sent, static_cast<long long>(expected.size()));
        ASSERT_TRUE(received == expected) << received.size() << " of " << expected.size() << " bytes";
        const fixtest::Measured m = fixtest::Measure(received);
        EXPECT_EQ(
            std::tuple(m.wellFormed, m.declaredBodyLength, m.declaredCheckSum, received.substr(0, 12)),
            std::tuple(true, m.countedBodyLength, m.computedCheckSum, std::string("8=FIX.4.4\x01") + "9="));
    }
}

} // namespace
