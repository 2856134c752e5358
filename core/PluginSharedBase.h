#pragma once

#include "core/PluginStateBase.h"
#include "core/PresetTask.h"
#include "core/ProcessorBase.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

namespace Orv::Audio::Plugin
{
/** What all plug-ins of this family share above the framework: the list of
    parameters the host sees and the host's state calls.

    The blob is the state's JSON in an instance pass with "FlatParams" beside
    it, the hosted parameters' values by id. The JSON side of the state
    belongs to the message thread: a save from another thread is made there
    while the caller waits, a restore from another thread returns after the
    parse and is loaded on the next shared tick. Nothing that a host passes
    can change the state halfway: a restore that fails anywhere leaves the
    state as it was. */
class SharedBase : public ProcessorBase
{
public:
    /** How long a save from another thread waits for the message thread
        before it makes the blob itself. */
    static constexpr int saveWaitMs = 2000;

    using ProcessorBase::ProcessorBase;
    ~SharedBase() override;

    /** Host thread: the whole state as one blob. */
    void getStateInformation (juce::MemoryBlock& destData) override;
    /** Host thread: restores a blob; a blob that does not load leaves the state
        as it was. */
    void setStateInformation (const void* data, int sizeInBytes) override;

    /** Message thread: the blob's JSON text, after any restore that waits. */
    std::string makeStateText();

    /** Message thread: loads an instance pass into the state. When the load
        fails anywhere the state is put back as it was and false comes back;
        never throws. */
    bool restoreState (const nlohmann::json& json);

    /** Any thread: whether a restore waits for the message thread. */
    bool isRestorePending() const { return presetTask.isPending(); }

protected:
    /** The parameters the host sees, in order; kept for the flat list of the
        state blob. */
    std::vector<juce::AudioProcessorParameter*> hostedParameters;

    /** The state as a preset; set by the layer that makes it. */
    StateBase* presetState = nullptr;

private:
    std::string makeStateTextOnMessageThread();

    PresetTask presetTask;
    /** Lets a save that waited too long tell a late job not to run. */
    std::shared_ptr<bool> aliveToken = std::make_shared<bool> (true);
};
} // namespace Orv::Audio::Plugin
