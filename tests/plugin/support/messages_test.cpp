// SPDX-License-Identifier: Apache-2.0
// Messages: what reaches the transcript, and what stays in the buffer.
#include "plugin/support/messages.h"

#include <gmock/gmock.h>

#include <string>

#include "tests/plugin/strict_simulator.h"

namespace {

using testing::ElementsAre;

TEST(Messages, ReachTheTranscriptWhole) {
    wf::test::StrictSimulator sim;
    mfli_print("level %d", -3);
    mfli_print("100%% done", 0);
    mfli_message("%s: %s", "a", "b%d");
    EXPECT_THAT(sim.lines(), ElementsAre("level -3", "100% done", "a: b%d"));

    const std::string wide(2000, 'n');
    mfli_message("%s|%d", wide.c_str(), 1);
    mfli_print_text("a plain text: %d");
    mfli_print_text(wide.c_str());
    EXPECT_THAT(sim.lines(), ElementsAre(wide.substr(0, 1023), "a plain text: %d", wide));
    EXPECT_EQ(std::string(mfli_msg_buf), wide.substr(0, 1023)) << "a plain text leaves it alone";
}

}  // namespace
