#pragma once

#include "parameters/DefaultGesture.h"
#include "persistence/JsonLoader.h"
#include "persistence/JsonSaver.h"

#include <string>
#include <vector>

namespace Orv::Testing
{
using CallLog = std::vector<std::string>;

/** A parameter over a plain normalised float that leaves every link of the
    chain of defaults in place and writes each call that reaches it into a
    log, so that a test sees which path a call took. */
class ChainSpy : public Parameters::DefaultGesture
{
public:
    explicit ChainSpy (CallLog& logToUse, bool* destroyedFlag = nullptr) : log (logToUse), destroyed (destroyedFlag) {}
    ~ChainSpy() override
    {
        if (destroyed != nullptr)
            *destroyed = true;
    }

    float getNormalised() const override { return value; }
    void setNormalisedNotifying (float v) override { log.push_back ("setNormalisedNotifying"); value = v; }
    void setNormalised (float v) override { log.push_back ("setNormalised"); Parameter::setNormalised (v); }
    void setInt (int i) override { log.push_back ("setInt"); Parameter::setInt (i); }
    void setBool (bool b) override { log.push_back ("setBool"); Parameter::setBool (b); }
    void setFloat (float v) override { log.push_back ("setFloat"); Parameter::setFloat (v); }
    void beginGesture() override { log.push_back ("beginGesture"); DefaultGesture::beginGesture(); }
    void endGesture() override { log.push_back ("endGesture"); DefaultGesture::endGesture(); }

    float value = 0.0f;
    CallLog& log;

private:
    bool* destroyed;
};

/** The parameter as a preset file holds it. */
inline nlohmann::json save (Parameters::Parameter& p) { return Json::toJson (p, ReflectContext::forPreset()); }

/** Reads the parameter from the JSON text. */
inline void load (const char* text, Parameters::Parameter& p)
{
    auto json = nlohmann::json::parse (text);
    Json::fromJson (json, p, ReflectContext::forPreset());
}
} // namespace Orv::Testing
