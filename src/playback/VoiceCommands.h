#pragma once
// Singing along as the transport and the main window reach it: the microphone, recording and
// the recorded voice's playback. The voice library carries them out.

class VoiceCommands {
public:
    virtual ~VoiceCommands() = default;
    // The microphone on or off: the live monitor, the level meter and lamp 3.
    virtual void SwitchMicrophone() = 0;
    virtual void StartVoiceRecord() = 0;
    // Ends the recording and keeps the take.
    virtual void StopVoiceRecord() = 0;
    virtual void ToggleVoice() = 0;
    virtual void StopVoice() = 0;
};
