# Makes a zip archive of the files that a list names, in the list's order,
# each stored under its path as the list gives it:
#
#   cmake -DLIST=<list> -DOUTPUT=<zip> -P MakeArchive.cmake
#
# Run it in the folder that the paths are relative to: the archive stores
# them as given, and the library unpacks them under its own folder.
#
# A fixed modification time keeps the time of the build out of the entries.
# The archive library still writes each file's access and change times into
# the entries' extended time stamps, so two builds may differ in those bytes
# while the names, order, contents and modification times stay the same.

foreach(variable LIST OUTPUT)
    if(NOT DEFINED ${variable})
        message(FATAL_ERROR "MakeArchive.cmake: ${variable} is required")
    endif()
endforeach()

file(STRINGS "${LIST}" entries)
if(NOT entries)
    message(FATAL_ERROR "MakeArchive.cmake: ${LIST} names no file")
endif()

get_filename_component(folder "${OUTPUT}" DIRECTORY)
file(MAKE_DIRECTORY "${folder}")
file(REMOVE "${OUTPUT}")
file(ARCHIVE_CREATE OUTPUT "${OUTPUT}" PATHS ${entries} FORMAT zip MTIME "2023-02-03 00:00:00 UTC")
