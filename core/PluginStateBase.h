#pragma once

#include "parameters/ParamList.h"
#include "persistence/PresetBase.h"
#include "persistence/PresetScreen.h"

#include <memory>

namespace Orv::Audio::Plugin
{
/** A preset that is the whole state of a plug-in instance: beside its
    content it carries the instance's parameter list and, in an instance
    pass, the window's size. Message thread. */
class StateBase : public Presets::Base
{
public:
    StateBase();
    ~StateBase() override;

    /** The instance's parameters; null in a state without any. */
    virtual ParamList* getParams() { return nullptr; }

    /** "Screen" in an instance pass, then "Params". */
    void reflectInstance (Reflector& reflector) override;

    /** The window's remembered size. */
    Presets::Screen& getScreen() noexcept { return *screen; }

protected:
    /** Replaces the window record by a plug-in's own kind; construction only. */
    void setScreen (std::unique_ptr<Presets::Screen> newScreen) { screen = std::move (newScreen); }

private:
    std::unique_ptr<Presets::Screen> screen;
};
} // namespace Orv::Audio::Plugin
