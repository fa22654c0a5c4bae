// What was called, compared with what is written down: transcripts/SUITE.txt has one section a
// test.
#pragma once

#include <string>
#include <vector>

namespace macrt {

// Of the test that runs; one without a section calls nothing. With QUORVANE_WRITE_TRANSCRIPTS in
// the environment the section is written instead, to be read by whoever commits it.
void expectTranscript(const std::vector<std::string>& calls);

}  // namespace macrt
