// Makes the standard streams safe to use, however the program was started.

#ifndef TOOLS_COMMON_STANDARD_STREAMS_H
#define TOOLS_COMMON_STANDARD_STREAMS_H

/// To be called before anything else.
///
/// Opens /dev/null for each standard stream that is closed, so that using the stream still fails.
/// Otherwise the next file to be opened would get the stream's number, and would then receive the
/// program's output or its complaints.
///
/// From now on std::cout and std::cerr wait where their descriptor is not ready to be written to,
/// even if it is set not to make programs wait. They no longer share a buffer with <cstdio>.
void prepare_standard_streams();

#endif
