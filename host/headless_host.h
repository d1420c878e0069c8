// The host with no screen: keys are the bytes of standard input, the console's text goes to standard
// output as a transcript (or, at the end, as the final grid), and the image can be saved as a PNG.
// A reader thread feeds the session the bytes of standard input and waits while they go into the
// ring, so no key is ever dropped; the session ends once the input has ended and the console waits.
#pragma once

#include "host/byte_keys.h"
#include "host/session.h"
#include "host/transcript.h"

class c_headless_host : public c_session {
public:
    explicit c_headless_host(const c_options& options);

    // The whole session; returns the exit status (see c_session::finish; 1 too when the PNG cannot
    // be written).
    int run();

    void update_screen() override {}  // the image is composed once, at the end
    void update_text() override {}
    void text_written(int character) override;
    void rows_moved(int count) override;
    void error_reported(int code, int line) override;
    void waiting_for_key() override;

private:
    void read_keys(int wake_fd);
    void write_output();

    c_transcript transcript;
    c_byte_keys byte_keys;
    bool recording = false;  // from the end of the banner on, and only for the transcript
};
