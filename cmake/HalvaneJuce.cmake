# JUCE is compiled exactly once, into halvane_juce. Everything else (engine, GUI,
# plug-in, tests, tools, benchmarks) links it, so touching one test never
# recompiles the framework. The modules are linked PRIVATE so that their
# interface sources are not re-added to consumers; include paths and compile
# definitions are re-exported by hand instead.

add_library(halvane_juce STATIC)

target_link_libraries(halvane_juce
    PRIVATE
        juce::juce_audio_utils
        juce::juce_audio_processors
        juce::juce_audio_formats
        juce::juce_audio_devices
        juce::juce_gui_extra
    PUBLIC
        juce::juce_recommended_config_flags
        PkgConfig::JUCE_SYSTEM_LIBS)

target_compile_definitions(halvane_juce
    PUBLIC
        JUCE_DISPLAY_SPLASH_SCREEN=0
        JUCE_REPORT_APP_USAGE=0
        JUCE_WEB_BROWSER=0
        JUCE_USE_CURL=0
        JUCE_VST3_CAN_REPLACE_VST2=0
        JUCE_PLUGINHOST_VST3=1
        JUCE_PLUGINHOST_LV2=0
        JUCE_MODAL_LOOPS_PERMITTED=1
        JUCE_SILENCE_XCODE_15_LINKER_WARNING=1
        JUCE_STRICT_REFCOUNTEDPOINTER=1
    INTERFACE
        $<TARGET_PROPERTY:halvane_juce,COMPILE_DEFINITIONS>)

target_include_directories(halvane_juce
    INTERFACE
        $<TARGET_PROPERTY:halvane_juce,INCLUDE_DIRECTORIES>)

set_target_properties(halvane_juce PROPERTIES
    POSITION_INDEPENDENT_CODE TRUE
    VISIBILITY_INLINES_HIDDEN TRUE
    C_VISIBILITY_PRESET hidden
    CXX_VISIBILITY_PRESET hidden)

# JUCE's own sources are not ours to lint; keep their warnings out of the log.
target_compile_options(halvane_juce PRIVATE -w)
