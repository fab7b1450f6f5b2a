// SPDX-License-Identifier: Apache-2.0
// A record's text on its way to the stream.
#include "plugin/saif/record_text.h"

#include "plugin/saif/fixed_text.h"

#include <cstring>

static_assert(FIXED_TEXT_SIZE <= sizeof(RecordText::room), "any number fits");

void record_begin(RecordText *record, FILE *stream) {
    record->stream = stream;
    record->length = 0;
}

void record_end(RecordText *record) {
    fwrite(record->room, 1, record->length, record->stream);
    record->length = 0;
}

// Makes room for `length` characters, at most the whole of it.
static char *make_room(RecordText *record, size_t length) {
    if (length > sizeof record->room - record->length) {
        record_end(record);
    }
    return record->room + record->length;
}

void record_put(RecordText *record, const char *text, size_t length) {
    if (length > sizeof record->room) {
        record_end(record);
        fwrite(text, 1, length, record->stream);
        return;
    }
    memcpy(make_room(record, length), text, length);
    record->length += length;
}

void record_put_blanks(RecordText *record, int count) {
    while (count > 0) {
        const size_t now = static_cast<size_t>(count) < sizeof record->room
                               ? static_cast<size_t>(count)
                               : sizeof record->room;
        memset(make_room(record, now), ' ', now);
        record->length += now;
        count -= static_cast<int>(now);
    }
}

void record_put_fixed(RecordText *record, double value) {
    char *at = make_room(record, FIXED_TEXT_SIZE);
    record->length += saif_format_fixed(at, value);
}
