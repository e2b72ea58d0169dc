# SPDX-License-Identifier: MIT
# Writes a C++ source that holds files as bytes.
#   cmake -DFOLDER=… -DOUTPUT=… -P embedAssets.cmake -- NAME…    (names below the folder)
cmake_minimum_required(VERSION 3.25)

set(type_of_html "text/html")
set(type_of_js "text/javascript")
set(type_of_css "text/css")

# What follows -- are the files.
set(first 0)
math(EXPR last "${CMAKE_ARGC} - 1")
foreach(i RANGE ${last})
    if(CMAKE_ARGV${i} STREQUAL "--")
        math(EXPR first "${i} + 1")
    endif()
endforeach()

set(entries "")
set(count 0)
foreach(i RANGE ${first} ${last})
    set(name "${CMAKE_ARGV${i}}")
    string(REGEX REPLACE ".*\\." "" ending "${name}")
    if(NOT type_of_${ending})
        message(FATAL_ERROR "${name}: what type of file is this?")
    endif()
    file(READ "${FOLDER}/${name}" bytes HEX)
    string(LENGTH "${bytes}" digits)
    math(EXPR size "${digits} / 2")
    string(REGEX REPLACE "(..)" "\\\\x\\1" bytes "${bytes}")
    string(APPEND entries "    {\"${name}\", \"${type_of_${ending}}; charset=utf-8\",\n"
        "     std::string_view(\"${bytes}\", ${size})},\n")
    math(EXPR count "${count} + 1")
endforeach()

file(WRITE "${OUTPUT}" "// Made of the files of web/ by embedAssets.cmake.
#include \"web/assets.h\"

#include <algorithm>
#include <array>

namespace web {

namespace {

constexpr std::array<Asset, ${count}> kAssets = {{
${entries}}};

}  // namespace

const Asset* findAsset(std::string_view name) {
    const auto* found = std::find_if(kAssets.begin(), kAssets.end(),
                                     [name](const Asset& asset) { return asset.name == name; });
    return found == kAssets.end() ? nullptr : found;
}

}  // namespace web
")
