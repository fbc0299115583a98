# Every library the project builds on, once, with the reason it was chosen. A target that the host has already defined
# is used as it is. What a library links is GLOBAL: the host links it too, from a folder above.
#
#   simdjson      JSON documents into records at memory speed; strict UTF-8. Used by oska/json/json_index.cpp only, which
#                 needs classes of its namespace `internal`: so the versions that were looked at are checked below.
#   libidn2       international host names to their ASCII form (UTS 46). Used by oska/url/url_encoding only.
#   utf8proc      Unicode categories, case and composition in 350 KB, where ICU would add 32 MB to a phone.
#                 Used by oska/text, oska/url/url_encoding, and by the tool's tables.
#   libcurl       HTTP/1.1 and HTTP/2 with a pool of connections. Used by adapters/native only, as are the next two.
#   OpenSSL       TLS under libcurl, where the servers' certificates are judged.
#   zlib          compressed bodies: libcurl takes a stream that is cut off for a whole one.
#   Qt 6 Widgets  an application's event loop and its widgets. Used by adapters/qt only and by the example viewer; where
#                 Qt 6.4 or later is not found, both are left out. Qt 6 Test sends the events of their tests.
#   CLI11         the oska program's options and help.
#   cpp-httplib   the server of `oska serve`, TLS included.
#   GoogleTest, Google Benchmark   tests and measurements.
#   nlohmann/json the yardstick of the decoding benchmark; nothing else uses it.

function(quenlooska_need_module target module)  # a library that ships a pkg-config file and no CMake package
  if(NOT TARGET PkgConfig::${target})
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(${target} REQUIRED IMPORTED_TARGET GLOBAL ${module})
  endif()
endfunction()

# The package accepts requests for its own version only, so none is requested and the range is checked here. A target that
# the host defined has no version: a static_assert in json_index.cpp checks it.
if(NOT TARGET simdjson::simdjson)
  find_package(simdjson REQUIRED GLOBAL)
  if(simdjson_VERSION VERSION_LESS 3.0 OR simdjson_VERSION VERSION_GREATER_EQUAL 5.0)
    message(FATAL_ERROR "simdjson ${simdjson_VERSION} was found. QuenloOska was checked with 3.0 to 4.x. "
      "Look at oska/json/json_index.cpp: it uses simdjson::internal, which may change with any version. "
      "When it compiles and the tests pass, widen the range here and in that file.")
  endif()
endif()
quenlooska_need_module(utf8proc libutf8proc)
quenlooska_need_module(idn2 libidn2)

if(NOT TARGET CURL::libcurl)
  find_package(CURL 7.88 REQUIRED GLOBAL)
endif()
if(NOT TARGET OpenSSL::SSL)
  find_package(OpenSSL 3 REQUIRED GLOBAL)
endif()
if(NOT TARGET ZLIB::ZLIB)
  find_package(ZLIB REQUIRED GLOBAL)
endif()
find_package(Threads REQUIRED GLOBAL)

if(QUENLOOSKA_BUILD_QT AND NOT TARGET Qt6::Widgets)
  find_package(Qt6 6.4 QUIET GLOBAL COMPONENTS Widgets)
  if(NOT TARGET Qt6::Widgets)
    message(STATUS "Qt 6.4 or later was not found: adapters/qt is left out")
  endif()
endif()

if(QUENLOOSKA_BUILD_TOOLS)
  find_package(CLI11 2.1 REQUIRED)
  # A shared library whose headers take another layout without the macros that its pkg-config file defines.
  quenlooska_need_module(httplib cpp-httplib)
endif()
if(QUENLOOSKA_BUILD_TESTS)
  find_package(GTest REQUIRED)
  if(TARGET Qt6::Widgets)
    find_package(Qt6 6.4 REQUIRED COMPONENTS Test)
  endif()
  include(GoogleTest)
endif()
if(QUENLOOSKA_BUILD_BENCH)
  find_package(benchmark REQUIRED)
  find_package(nlohmann_json REQUIRED)
endif()
