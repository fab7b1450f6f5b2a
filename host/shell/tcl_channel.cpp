// SPDX-License-Identifier: Apache-2.0
// A channel type of two write functions; everything else that a channel can do it refuses.
#include "host/shell/tcl_channel.h"

#include <cerrno>
#include <cstdio>

#include "host/shell/transcript.h"

namespace wf {
namespace {

int write_output(ClientData transcript, const char *text, int length, int *) {
    static_cast<Transcript *>(transcript)->write({text, static_cast<size_t>(length)});
    return length;
}

int write_error(ClientData transcript, const char *text, int length, int *error) {
    const auto size = static_cast<size_t>(length);
    static_cast<Transcript *>(transcript)->clear_way();
    if (std::fwrite(text, 1, size, stderr) != size) {
        *error = errno;
        return -1;
    }
    static_cast<Transcript *>(transcript)->write_to_file({text, size});
    return length;
}

int no_input(ClientData, char *, int, int *error) {
    *error = EINVAL;
    return -1;
}

int nothing_to_close(ClientData, Tcl_Interp *) {
    return 0;
}

void nothing_to_watch(ClientData, int) {
}

int no_handle(ClientData, int, ClientData *) {
    return TCL_ERROR;
}

Tcl_ChannelType channel_type(Tcl_DriverOutputProc *write) {
    Tcl_ChannelType type = {};
    type.typeName = "transcript";
    type.version = TCL_CHANNEL_VERSION_5;
    type.closeProc = nothing_to_close;
    type.inputProc = no_input;
    type.outputProc = write;
    type.watchProc = nothing_to_watch;
    type.getHandleProc = no_handle;
    return type;
}

const Tcl_ChannelType output_type = channel_type(write_output);
const Tcl_ChannelType error_type = channel_type(write_error);

Tcl_Channel make_channel(const Tcl_ChannelType &type, const char *name, const char *buffering,
                         int standard, Transcript &transcript) {
    Tcl_Channel channel = Tcl_CreateChannel(&type, name, &transcript, TCL_WRITABLE);
    Tcl_SetChannelOption(nullptr, channel, "-buffering", buffering);
    Tcl_SetChannelOption(nullptr, channel, "-translation", "lf");
    Tcl_SetStdChannel(channel, standard);
    // A reference of our own: the channel must not go away with the first interpreter.
    Tcl_RegisterChannel(nullptr, channel);
    return channel;
}

void drop_channel(Tcl_Channel channel, int standard) {
    Tcl_SetStdChannel(nullptr, standard);
    Tcl_UnregisterChannel(nullptr, channel);
}

}  // namespace

TranscriptChannels::TranscriptChannels(Transcript &transcript)
    : output_(make_channel(output_type, "stdout", "line", TCL_STDOUT, transcript)),
      error_(make_channel(error_type, "stderr", "none", TCL_STDERR, transcript)) {
}

TranscriptChannels::~TranscriptChannels() {
    drop_channel(output_, TCL_STDOUT);
    drop_channel(error_, TCL_STDERR);
}

void TranscriptChannels::flush() {
    Tcl_Flush(output_);
}

}  // namespace wf
