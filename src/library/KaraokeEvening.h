#pragma once
// An evening of singers run by the queue: "Next" plays the next singer's next song in the key
// they sang it in last; when a song ends the karaoke window names who is next and counts down
// before it plays; the key a singer chose is kept for the next time.

#include "library/SingerQueue.h"

#include <QObject>
#include <QTimer>
#include <functional>

struct PlayerState;
class FormProvider;
class PlayerTransport;

class KaraokeEvening final : public QObject {
    Q_OBJECT
public:
    // Seconds the karaoke window counts down between two singers.
    static constexpr int kCountdownSeconds = 15;

    KaraokeEvening(SingerQueue& queue, PlayerState& state, PlayerTransport& transport, FormProvider& forms,
                   QString linkFolder, QObject* parent = nullptr);

    // Plays the next turn at once; false when nobody waits with a song or it cannot be opened.
    bool PlayNext();
    // The song that plays came to its end: true when it was a turn of the queue, and the
    // evening takes over from the playlist, counting down to the next turn if anyone waits.
    bool SongEnded();
    // The countdown is held: the next turn waits for "Next singer".
    void HoldCountdown();
    bool CountingDown() const { return m_countdown.isActive(); }
    int SecondsLeft() const { return m_secondsLeft; }
    // Who sings now, empty between turns and before the first.
    const std::optional<Turn>& Current() const { return m_current; }
    // The song that plays is the current turn's, not one the host opened in its place.
    bool PlayingTurn() const;

    // "Next: NAME - SONG", empty when nobody waits.
    QString NextText() const;

signals:
    // The queue or the turn changed: its windows show it again.
    void changed();

private:
    void KeepCurrentKey();
    void ShowCountdown();
    void Tick();

    SingerQueue& m_queue;
    PlayerState& m_state;
    PlayerTransport& m_transport;
    FormProvider& m_forms;
    QString m_linkFolder;
    QTimer m_countdown;
    int m_secondsLeft = 0;
    std::optional<Turn> m_current;
    QString m_currentFile;  // the file the player opened for the turn
};
