// A built FIX message goes out as ONE gathered send of its slots over a connected loopback TCP
// pair (WSASend on Windows, sendmsg with an iovec vector on POSIX) and arrives as the bytes of the
// slots in order, with a BodyLength and CheckSum that a receiver's own count confirms.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <thread>

#include "VeloraUtils/FixTagCollection.h"
#include "platform/Platform.h"

// Independent message checks, defined in fix_tag_collection_test.cpp.
namespace fixcheck {
struct Measured {
    bool wellFormed = false;
    unsigned int declaredBodyLength = 0;
    unsigned int countedBodyLength = 0;
    unsigned int declaredCheckSum = 0;
    unsigned int computedCheckSum = 0;
};
Measured Measure(const std::string& message);
std::string Gather(const WsaCollection& c);
} // namespace fixcheck

namespace {

namespace vp = velora::platform;

struct SocketPair {
    vp::SocketHandle sender = vp::kInvalidSocket;
    vp::SocketHandle receiver = vp::kInvalidSocket;
    SocketPair() { EXPECT_TRUE(vp::OpenLoopbackPair(sender, receiver)); }
    ~SocketPair() {
        vp::CloseSocket(sender);
        vp::CloseSocket(receiver);
    }
    SocketPair(const SocketPair&) = delete;
    SocketPair& operator=(const SocketPair&) = delete;
};

std::string ReceiveExactly(vp::SocketHandle socket, std::size_t size) {
    std::string out(size, '\0');
    std::size_t got = 0;
    while (got < size) {
        const long long n = vp::Receive(socket, out.data() + got, size - got);
        if (n <= 0) break;
        got += static_cast<std::size_t>(n);
    }
    out.resize(got);
    return out;
}

// A NewOrderSingle with its per-message values held inside the builder and the rest by reference.
void BuildOrder(FixTagCollection& b, unsigned int seq, const std::string& clOrdId) {
    b.Append("34=", 3, false, 0);
    b.AppendMsgSeqNumValue(seq);
    b.AppendTagSenderCompId("VELORA", 6, 0);
    b.AppendTagTargetCompId("BROKER", 6, 0);
    b.AppendTagUtc(6, 14, 2024, 34567890);
    b.AppendTag("11=", clOrdId.c_str(), 3, static_cast<unsigned int>(clOrdId.size()), 0, true);
    b.AppendTag("55=", "MSFT", 3, 4, 0, true);
    b.AppendUShortTagAsString("54=", '1', 3);
    b.AppendUIntTag("38=", 1500, 3);
    b.AppendTag("40=", "2", 3, 1, 0, true);
    b.AppendTag("44=", "412.35", 3, 6, 0, true);
}

TEST(GatheredSend, ArrivesAsTheConcatenatedSlots) {
    std::printf("platform backend: %s\n", vp::BackendName());
    // Beyond 1024 slots the list goes out in several calls.
    for (const int extraFields : {0, 1500}) {
        SCOPED_TRACE(extraFields == 0 ? "NewOrderSingle" : "MoreSlotsThanOneVectorHolds");
        FixTagCollection b(16, 0x0404, "FIX");
        const std::string clOrdId = "ORD-" + std::to_string(extraFields); // referenced until the send
        BuildOrder(b, 100, clOrdId);
        for (int f = 0; f < extraFields; ++f) b.AppendTag("58=", "note", 3, 4, 0, true);
        ASSERT_TRUE(b.Finalize("D"));
        const std::string expected = fixcheck::Gather(b);
        ASSERT_EQ(expected.size(), b.GetTotalLength());

        SocketPair pair;
        std::string received;
        // The receiver drains concurrently, so a message larger than the socket buffers goes out too.
        std::thread reader([&] { received = ReceiveExactly(pair.receiver, expected.size()); });
        const long long sent = vp::GatherSend(pair.sender, b.GetWsaBufAt(0), b.GetCount());
        vp::CloseSocket(pair.sender); // ends the reader's wait even when the send failed
        pair.sender = vp::kInvalidSocket;
        reader.join();
        EXPECT_EQ(sent, static_cast<long long>(expected.size()));
        ASSERT_TRUE(received == expected) << received.size() << " of " << expected.size() << " bytes";
        const fixcheck::Measured m = fixcheck::Measure(received);
        ASSERT_TRUE(m.wellFormed);
        EXPECT_EQ(m.declaredBodyLength, m.countedBodyLength);
        EXPECT_EQ(m.declaredCheckSum, m.computedCheckSum);
        EXPECT_EQ(received.substr(0, 12), std::string("8=FIX.4.4\x01") + "9=");
    }
}

} // namespace
