// The picture of video songs: the frame at a song second is the one ffmpeg gives for that
// second, whether the clock ran there or jumped; a late clock drops frames, a cover picture is no
// video, and damaged files end in a picture or none, never in a hang.

#include "audio/MediaProbe.h"
#include "support/TestSupport.h"
#include "video/VideoStream.h"

#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

// Pixels of two pictures of one size that differ by more than a colour conversion could make
// them: the test picture's frames differ in their counter and a moving band.
int DifferentPixels(const QImage& a, const QImage& b)
{
    if (a.size() != b.size())
        return a.width() * a.height() + 1;
    const QImage x = a.convertToFormat(QImage::Format_RGB32);
    const QImage y = b.convertToFormat(QImage::Format_RGB32);
    int different = 0;
    for (int row = 0; row < x.height(); ++row) {
        const auto* p = reinterpret_cast<const QRgb*>(x.constScanLine(row));
        const auto* q = reinterpret_cast<const QRgb*>(y.constScanLine(row));
        for (int i = 0; i < x.width(); ++i)
            different += std::max({std::abs(qRed(p[i]) - qRed(q[i])), std::abs(qGreen(p[i]) - qGreen(q[i])),
                                   std::abs(qBlue(p[i]) - qBlue(q[i]))}) > 48;
    }
    return different;
}

// On the heap, as the player holds it.
std::unique_ptr<VideoStream> Opened(const QString& path)
{
    return std::make_unique<VideoStream>(path);
}

class VideoStreamTest : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        QuietDecoderLog();
        folder = new QTemporaryDir;
        video = MakeTestVideo(folder->filePath("karaoke.mp4"), 4);
    }
    static void TearDownTestSuite() { delete folder; }

    // The frame ffmpeg shows at a second of the file.
    QImage FfmpegFrame(double seconds)
    {
        const QString png = folder->filePath(QStringLiteral("ffmpeg-%1.png").arg(seconds));
        EXPECT_TRUE(RunProgram("ffmpeg", {"-v", "error", "-y", "-ss", QString::number(seconds), "-i", video,
                                          "-frames:v", "1", png}));
        return QImage(png);
    }

    static QTemporaryDir* folder;
    static QString video;
};
QTemporaryDir* VideoStreamTest::folder = nullptr;
QString VideoStreamTest::video;

} // namespace

TEST_F(VideoStreamTest, TheFrameOfASecondIsTheOneFfmpegExtracts)
{
    // ffmpeg's frames first, then the stream's.
    const std::vector<double> seconds{0.0, 0.52, 1.0, 2.36, 3.2};
    std::vector<QImage> references, nextFrames;
    for (double second : seconds) {
        references.push_back(FfmpegFrame(second));
        nextFrames.push_back(FfmpegFrame(second + 0.04));
        ASSERT_FALSE(references.back().isNull());
    }

    const auto stream = Opened(video);
    ASSERT_FALSE(stream->Failed());
    EXPECT_EQ(stream->Facts().codec, "h264");
    EXPECT_EQ(stream->Facts().size, QSize(320, 240));
    EXPECT_DOUBLE_EQ(stream->Facts().framesPerSecond, 25);
    EXPECT_EQ(stream->Facts().Text(), "h264 320x240 25 fps");
    for (size_t i = 0; i < seconds.size(); ++i) {
        ASSERT_TRUE(stream->SettleAt(seconds[i])) << seconds[i];
        EXPECT_LT(DifferentPixels(stream->Current(), references[i]), 20) << "at " << seconds[i];
        EXPECT_GT(DifferentPixels(stream->Current(), nextFrames[i]), 200)
            << "the comparison tells the next frame apart at " << seconds[i];
        EXPECT_NEAR(stream->CurrentSeconds(), seconds[i], 0.041);
    }
}

TEST_F(VideoStreamTest, AJumpBackOrAheadLandsOnTheSameFrameAsPlayingThere)
{
    const auto played = Opened(video);
    for (double t = 0; t <= 2.81; t += 0.01)
        played->Advance(t);
    ASSERT_TRUE(played->SettleAt(2.8));
    const QImage there = played->Current();

    const auto jumped = Opened(video);
    ASSERT_TRUE(jumped->SettleAt(0.3));
    ASSERT_TRUE(jumped->SettleAt(3.6)) << "ahead";
    ASSERT_TRUE(jumped->SettleAt(0.1)) << "back";
    EXPECT_NEAR(jumped->CurrentSeconds(), 0.08, 0.001);
    ASSERT_TRUE(jumped->SettleAt(2.8));
    EXPECT_EQ(jumped->Current(), there);
    EXPECT_DOUBLE_EQ(jumped->CurrentSeconds(), played->CurrentSeconds());
}

TEST_F(VideoStreamTest, ALateClockDropsTheFramesItPassedAndShowsTheDueOne)
{
    const auto stream = Opened(video);
    ASSERT_TRUE(stream->SettleAt(0));
    // The interface thread stalled for a second and a half.
    ASSERT_TRUE(stream->SettleAt(1.5));
    EXPECT_NEAR(stream->CurrentSeconds(), 1.48, 0.001);
    EXPECT_GE(stream->DroppedFrames(), 30) << "the frames between were never shown";
}

TEST_F(VideoStreamTest, FramesAreScaledOnceToTheWindowWithTheirShape)
{
    const auto stream = Opened(video);
    stream->SetTargetSize(QSize(1920, 1200));
    ASSERT_TRUE(stream->SettleAt(1));
    EXPECT_EQ(stream->Current().size(), QSize(1600, 1200));
    stream->SetTargetSize(QSize(100, 100));
    ASSERT_TRUE(stream->SettleAt(2));
    EXPECT_EQ(stream->Current().size(), QSize(100, 75));
}

TEST_F(VideoStreamTest, ACoverPictureOrAnAudioFileIsNoVideo)
{
    const QString cover = folder->filePath("cover.png");
    QImage(64, 64, QImage::Format_RGB32).save(cover);
    const QString song = folder->filePath("with-cover.mp3");
    ASSERT_TRUE(RunProgram("ffmpeg", {"-v", "error", "-y", "-f", "lavfi", "-i", "sine=duration=1", "-i", cover, "-map",
                                      "0", "-map", "1", "-c:v", "png", "-disposition:v", "attached_pic", song}));
    EXPECT_FALSE(ProbeVideo(song).Valid());
    EXPECT_TRUE(Opened(song)->Failed());
    EXPECT_FALSE(ProbeVideo(MediaFixture("plain.mp3")).Valid());
    EXPECT_FALSE(ProbeVideo(folder->filePath("missing.mp4")).Valid());
    EXPECT_TRUE(IsVideoName("/songs/A.MKV"));
    EXPECT_FALSE(IsVideoName("/songs/a.mp3"));
}

TEST_F(VideoStreamTest, ADamagedOrCutVideoEndsInAPictureOrNoneNeverAHang)
{
    const QByteArray whole = ReadFileBytes(video);
    QByteArray damaged = whole;
    for (qsizetype i = whole.size() / 3; i < whole.size() * 2 / 3; i += 7)
        damaged[i] = char(damaged[i] ^ 0x5A);
    WriteFileBytes(folder->filePath("damaged.mp4"), damaged);
    WriteFileBytes(folder->filePath("cut.mp4"), whole.left(whole.size() / 2));
    WriteFileBytes(folder->filePath("head.mp4"), whole.left(300));

    for (const char* name : {"damaged.mp4", "cut.mp4", "head.mp4"}) {
        const auto stream = Opened(folder->filePath(name));
        for (double second : {0.2, 1.9, 3.5, 0.0}) {
            // Settled or not, each answer comes within its time.
            stream->SettleAt(second, 3000);
            if (!stream->Current().isNull()) {
                EXPECT_FALSE(stream->Current().size().isEmpty());
            }
        }
    }
    const auto cut = Opened(folder->filePath("cut.mp4"));
    ASSERT_TRUE(cut->SettleAt(0.4));
    const auto good = Opened(video);
    ASSERT_TRUE(good->SettleAt(0.4));
    EXPECT_EQ(cut->Current(), good->Current()) << "what is there plays as it was";
}
