#pragma once
// How long an audio file plays, as FFmpeg's container probe tells it.

#include <string>

// Seconds; 0 when FFmpeg cannot open the file or finds no audio in it.
double MediaLength(const std::string& path);

// Keeps FFmpeg's own log (misdetection notes, frame warnings) off stderr; errors reach the user
// through the program's messages instead.
void QuietDecoderLog();
