#pragma once
// What kind of song a file is, as the probe and the information dialog name it.

#include <QString>

// "CDG MP3" for an audio song with disc graphics beside it, "VIDEO h264 1920x1080 25 fps" for a
// file with a moving picture, else the format the song's bytes show ("MP3", "MIDI", ...).
QString SongKindText(const QString& audioPath, const QString& format);
