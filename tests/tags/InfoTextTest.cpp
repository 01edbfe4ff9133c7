// The information texts, word for word, against files whose facts are known.

#include "support/TestSupport.h"
#include "tags/InfoTexts.h"
#include "tags/MP3Class.h"
#include "Tagged.h"

#include <gtest/gtest.h>

TEST(InfoTexts, ThousandsKeepTheirOddGroupingAndSecondsTruncate)
{
    EXPECT_EQ(FormatThousands(0), "0");
    EXPECT_EQ(FormatThousands(999), "999");
    EXPECT_EQ(FormatThousands(1000), "1 000");
    EXPECT_EQ(FormatThousands(123456), "123 456");
    EXPECT_EQ(FormatThousands(1234567), "1 123 567") << "the middle group starts one place left";
    EXPECT_EQ(FormatThousands(123456789), "123 345 789");
    EXPECT_EQ(FormatThousands(1234567890), "1 123 456 890");
    EXPECT_EQ(FormatThousands(-1234), "-1 234");

    EXPECT_EQ(FormatSeconds(0), "00:00");
    EXPECT_EQ(FormatSeconds(59.99), "00:59");
    EXPECT_EQ(FormatSeconds(61), "01:01");
    EXPECT_EQ(FormatSeconds(600), "10:00");
    EXPECT_EQ(FormatSeconds(6000.5), "100:00") << "minutes above 99 grow wider";

    WavFacts wav;
    wav.Size = 1234567;
    EXPECT_TRUE(WavInfoText(wav).startsWith("File size: 1 123 567 bytes\r\n"));
}

TEST(InfoTexts, MpegWavAndOggTextsOfTheFixtures)
{
    EXPECT_EQ(Tagged(MediaFixture("flags.mp3"))->MPEGInfo(),
              "Size: 4284 bytes\r\nLength: 1 seconds\r\nMPEG 2.0 Layer III\r\n32 kbit, 41 frames\r\n"
              "22050Hz Mono\r\nCRCs: Yes\r\nCopyrighted: Yes\r\nOriginal: No\r\nEmphasis: 50/15 ms");
    EXPECT_EQ(Tagged(MediaFixture("vbr.mp3"))->MPEGInfo(),
              "Size: 4269 bytes\r\nLength: 0 seconds\r\nMPEG 1.0 Layer III\r\n62 kbit, 21 frames\r\n"
              "44100Hz Joint Stereo\r\nCRCs: No\r\nCopyrighted: No\r\nOriginal: Yes\r\nEmphasis: None");
    EXPECT_EQ(Tagged(MediaFixture("pcm8-mono.wav"))->WAVInfo(),
              "File size: 4 044 bytes\r\nLength: 00:00\r\nFormat: 1\r\nMode: Mono\r\nChannels: 1\r\n"
              "Sample rate: 8000 Hz\r\nBits per sample: 8\r\nBytes per second: 8000\r\nHeader size: 44\r\n");
    EXPECT_EQ(Tagged(MediaFixture("comments.ogg"))->OGGInfo(),
              "Length: 00:00\r\nAverage bitrate: 90 kbps\r\nFile size: 5 606 bytes\r\nNominal bitrate: 64 kbps\r\n"
              "Mode: Stereo\r\n Sampling rate: 44100 Hz\r\nVendor:\r\nXiph.Org libVorbis I 20200704 (Reducing Environment)");

    auto mpc = Tagged(MediaFixture("tone.mpc"));
    EXPECT_EQ(mpc->MPPTag(), "APE v2.00");
    EXPECT_EQ(mpc->MPPInfo(), "Stream Version 8  Profile: 'Standard'\r\nBitrate: 117 Kb/s\r\nFrames: 20\r\n"
                              "Playtime: 0 sec.\r\nMode: Joint Stereo\r\nSize: 7 419 Bytes");
    EXPECT_EQ(mpc->MPEGInfo(), "") << "only the text of the file's own format";
}

TEST(InfoTexts, MonkeysAudioAndMusepackSv7)
{
    const QString ape = SharedFixture("mac-399.ape");
    const QString apeWithId3v2 = SharedFixture("mac-399-id3v2.ape");
    const QString mpc = SharedFixture("click.mpc");
    if (ape.isEmpty() || mpc.isEmpty())
        GTEST_SKIP() << "../shared/fixtures is absent";
    auto plain = Tagged(ape);
    EXPECT_EQ(plain->APEformat(), "Version: 3.99\r\nMode: High\r\nTag: ");
    EXPECT_EQ(plain->APEaudio(), "Sample Rate: 44100\r\nChannels: 2\r\nBits Per Sample: 16\r\n");
    EXPECT_EQ(plain->APEInfo(), "Length: 00:03\r\nFile Size: 85 kB\r\nCompression: 13.61 %");
    EXPECT_EQ(Tagged(apeWithId3v2)->APEformat(), "Version: 3.99\r\nMode: High\r\nTag: Id3v2 Tag");

    auto sv7 = Tagged(mpc);
    EXPECT_EQ(sv7->MPPInfo(), "Stream Version 7  Profile: 'Standard'\r\nBitrate: 203 Kb/s\r\nFrames: 3\r\n"
                              "Playtime: 0 sec.\r\nMode: Joint Stereo\r\nSize: 1 588 Bytes");

    EXPECT_EQ(MpcTagText(true, true, 0), "ID3v1") << "later hits overwrite earlier ones";
    EXPECT_EQ(MpcTagText(false, true, 0), "Force ID3v1");
    EXPECT_EQ(MpcTagText(true, false, 1000), "APE v1.00");
    EXPECT_EQ(MpcTagText(false, false, 0), "");
}
