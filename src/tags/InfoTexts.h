#pragma once
// The information texts that the file dialogs show, built word for word from the stream facts.

#include "tags/StreamFacts.h"

// Digits in groups of three from the right, except that the middle groups start one place to
// the left: 1234567 prints "1 123 567". Empty for more than 11 digits or a negative count.
QString FormatThousands(int32_t value);
// "mm:ss" from seconds, truncated; minutes above 99 grow wider.
QString FormatSeconds(double seconds);

QString WavInfoText(const WavFacts& wav);
QString MpegInfoText(const MpegFacts& mpeg);
QString ApeFormatText(const ApeFacts& ape, bool id3v1, bool id3v2, bool apeTag);
QString ApeAudioText(const ApeFacts& ape);
QString ApeInfoText(const ApeFacts& ape);
// apeTagVersion is 0 when the file has no APE tag.
QString MpcTagText(bool id3v1, bool id3v2, int apeTagVersion);
QString MpcInfoText(const MpcFacts& mpc);
QString OggInfoText(const OggFacts& ogg);
