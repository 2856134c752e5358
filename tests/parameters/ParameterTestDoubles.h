#pragma once

#include "parameters/DefaultGesture.h"
#include "persistence/Reflector.h"

#include <map>
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
    explicit ChainSpy (CallLog& logToUse, bool* destroyedFlag = nullptr)
        : log (logToUse), destroyed (destroyedFlag)
    {
    }

    ~ChainSpy() override
    {
        if (destroyed != nullptr)
            *destroyed = true;
    }

    float getNormalised() const override { return value; }

    void setNormalisedNotifying (float v) override
    {
        log.push_back ("setNormalisedNotifying");
        value = v;
    }

    void setNormalised (float v) override
    {
        log.push_back ("setNormalised");
        Parameter::setNormalised (v);
    }

    void setInt (int i) override
    {
        log.push_back ("setInt");
        Parameter::setInt (i);
    }

    void setBool (bool b) override
    {
        log.push_back ("setBool");
        Parameter::setBool (b);
    }

    void setFloat (float v) override
    {
        log.push_back ("setFloat");
        Parameter::setFloat (v);
    }

    void beginGesture() override
    {
        log.push_back ("beginGesture");
        DefaultGesture::beginGesture();
    }

    void endGesture() override
    {
        log.push_back ("endGesture");
        DefaultGesture::endGesture();
    }

    float value = 0.0f;

private:
    CallLog& log;
    bool* destroyed;
};

/** A visitor node with a flat map of values, for reflect functions that
    only write and read plain keys. */
class FakeReflector : public Reflector
{
public:
    explicit FakeReflector (bool loadingToUse) : loading (loadingToUse) {}

    bool isLoading() const override { return loading; }
    Reflector* child (const std::string& name) override
    {
        auto found = children.find (name);
        return found != children.end() ? found->second : nullptr;
    }
    Reflector* childAt (int) override { return nullptr; }
    Reflector* appendChild (const std::string&) override { return nullptr; }

    void setValue (const std::string& name, const ReflectedValue& value) override
    {
        if (! loading)
            values[name] = value;
    }

    ReflectedValue getValue (const std::string& name) const override
    {
        auto found = values.find (name);
        return found != values.end() ? found->second : ReflectedValue();
    }

    std::map<std::string, ReflectedValue> values;
    std::map<std::string, Reflector*> children;

private:
    bool loading;
};
} // namespace Orv::Testing
