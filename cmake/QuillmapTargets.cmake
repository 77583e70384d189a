# The compiler flags of all our targets, each with its reason, and the functions that declare
# libraries and tests.

option(QUILLMAP_WERROR "Treat warnings as errors" OFF)
option(QUILLMAP_CHECK_HEADERS "Compile the headers without a source alone" OFF)
option(QUILLMAP_BENCHMARKS "Build the programs in benchmarks/" OFF)
option(QUILLMAP_FUZZ "Build the programs in fuzzing/ for fuzzing, with Clang" OFF)
option(QUILLMAP_COVERAGE "Count which lines and branches run" OFF)
option(QUILLMAP_PORTABLE "Use nothing but Qt and the standard library, as on systems other than Linux"
  OFF)
set(QUILLMAP_SANITIZE "" CACHE STRING "Sanitizers to build with, as in -fsanitize=")

# The folder in platform/ that is built.
if(CMAKE_SYSTEM_NAME STREQUAL "Linux" AND NOT QUILLMAP_PORTABLE)
  set(QUILLMAP_PLATFORM linux)
else()
  set(QUILLMAP_PLATFORM portable)
endif()

add_library(quillmap_flags INTERFACE)
target_compile_features(quillmap_flags INTERFACE cxx_std_17)
if(MSVC)
  target_compile_options(quillmap_flags INTERFACE
    /W3 /permissive-
    /utf-8                # of the sources, and of the literals in them
    /fp:precise           # written texts depend on 32-bit float arithmetic staying 32-bit
    $<$<BOOL:${QUILLMAP_WERROR}>:/WX>)
  target_compile_definitions(quillmap_flags INTERFACE NOMINMAX)  # std::min and std::max are ours
else()
  target_compile_options(quillmap_flags INTERFACE
    -Wall -Wextra -Wpedantic
    -Wshadow              # a hidden name is a wrong name sooner or later
    -Wnon-virtual-dtor -Woverloaded-virtual
    -Wold-style-cast      # casts say what they do
    -Wdouble-promotion    # written texts depend on 32-bit float arithmetic staying 32-bit
    -ffp-contract=off     # likewise: a fused multiply-add rounds once instead of twice
    $<$<BOOL:${QUILLMAP_WERROR}>:-Werror>)
endif()
target_compile_definitions(quillmap_flags INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII  # every text says which encoding it has
  QT_NO_FOREACH                              # range-for does not copy the container
  QT_NO_URL_CAST_FROM_STRING
  QT_DISABLE_DEPRECATED_BEFORE=0x050F00)     # nothing that Qt has deprecated
if(QUILLMAP_SANITIZE)
  target_compile_options(quillmap_flags INTERFACE
    -fsanitize=${QUILLMAP_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(quillmap_flags INTERFACE -fsanitize=${QUILLMAP_SANITIZE})
  # Qt's own targets switch assertions off in every build that is not a debug build.
  target_compile_definitions(quillmap_flags INTERFACE QT_FORCE_ASSERTS)
endif()
if(QUILLMAP_COVERAGE)
  # Two threads that count at once may lose a count; atomic counters would lose none, and make loops
  # over pixels eight times as slow. Targets with the property QUILLMAP_UNCOUNTED are not counted,
  # such as the slow simple versions that tests compare with.
  set(counting $<NOT:$<BOOL:$<TARGET_PROPERTY:QUILLMAP_UNCOUNTED>>>)
  target_compile_options(quillmap_flags INTERFACE $<${counting}:--coverage>)
  target_link_options(quillmap_flags INTERFACE --coverage)
endif()

# quillmap_see_widgets(RESULT TARGET)
#
# Whether a target is compiled with Qt's widgets, directly or by what it links.
function(quillmap_see_widgets result target)
  set(${result} FALSE PARENT_SCOPE)
  get_target_property(type ${target} TYPE)
  get_target_property(links ${target} INTERFACE_LINK_LIBRARIES)
  if(ARGN STREQUAL "" AND NOT type STREQUAL INTERFACE_LIBRARY)
    get_target_property(links ${target} LINK_LIBRARIES)
  endif()
  foreach(link IN LISTS links)
    if(link STREQUAL Qt5::Widgets)
      set(${result} TRUE PARENT_SCOPE)
    elseif(TARGET ${link} AND NOT link MATCHES "^Qt5::")
      quillmap_see_widgets(seen ${link} through_a_link)
      if(seen)
        set(${result} TRUE PARENT_SCOPE)
      endif()
    endif()
  endforeach()
endfunction()

# quillmap_precompile(TARGET [OPTION...])
#
# Lets a target use precompiled headers of Qt, which are made once for all targets with the same
# modules and options.
function(quillmap_precompile target)
  get_target_property(links ${target} LINK_LIBRARIES)
  set(modules Qt5::Gui)
  set(headers <algorithm> <functional> <memory> <vector> <QFile> <QImage> <QXmlStreamReader>)
  quillmap_see_widgets(widgets ${target})
  if(widgets)
    list(APPEND modules Qt5::Widgets)
    list(APPEND headers <QApplication> <QPainter> <QStandardItemModel>)
  endif()
  if(Qt5::Test IN_LIST links)
    list(APPEND modules Qt5::Test)
    list(APPEND headers <QSignalSpy> <QTest>)
  endif()
  string(MAKE_C_IDENTIFIER "precompiled ${modules} ${ARGN}" precompiled)
  if(NOT TARGET ${precompiled})
    set(unit ${PROJECT_BINARY_DIR}/precompiled.cpp)
    file(CONFIGURE OUTPUT ${unit} CONTENT "\n")
    add_library(${precompiled} OBJECT EXCLUDE_FROM_ALL ${unit})
    set_target_properties(${precompiled} PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
    target_link_libraries(${precompiled} PRIVATE quillmap_flags ${modules})
    target_compile_options(${precompiled} PRIVATE ${ARGN})
    target_precompile_headers(${precompiled} PRIVATE ${headers})
  endif()
  target_precompile_headers(${target} REUSE_FROM ${precompiled})
endfunction()

# quillmap_library(NAME [SOURCES ...] [LINKS ...] [PRIVATE_LINKS ...])
#
# A static library of one level. Paths are relative to the project's root. Each source stands beside
# its header of the same name, one in platform/linux or platform/portable in the folder below its
# header; HEADERS names headers without a source. A library sees its own headers
# and those of the libraries it links, and no others: its include path is a folder of links to
# exactly its headers, so that an include against the layering does not compile.
function(quillmap_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS;LINKS;PRIVATE_LINKS" ${ARGN})
  set(headers ${ARG_HEADERS})
  foreach(source IN LISTS ARG_SOURCES)
    string(REGEX REPLACE "\\.cpp$" ".h" header ${source})
    string(REPLACE "platform/${QUILLMAP_PLATFORM}/" "platform/" header ${header})
    if(EXISTS ${PROJECT_SOURCE_DIR}/${header})
      list(APPEND headers ${header})
    endif()
  endforeach()
  set(tree ${PROJECT_BINARY_DIR}/include/${name})
  file(REMOVE_RECURSE ${tree})
  foreach(header IN LISTS headers)
    get_filename_component(folder ${header} DIRECTORY)
    file(MAKE_DIRECTORY ${tree}/${folder})
    if(CMAKE_HOST_WIN32)
      # Links need a privilege there; this header stands for one.
      file(WRITE ${tree}/${header} "#include \"${PROJECT_SOURCE_DIR}/${header}\"\n")
    else()
      file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${header} ${tree}/${header} SYMBOLIC)
    endif()
  endforeach()
  list(TRANSFORM ARG_SOURCES PREPEND ${PROJECT_SOURCE_DIR}/)
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${tree})
  target_link_libraries(${name} PUBLIC ${ARG_LINKS} PRIVATE quillmap_flags ${ARG_PRIVATE_LINKS})
  # A source includes its own header first, and ./check lints it without precompiled headers: that
  # compiles the header alone. Headers without a source need a unit of their own.
  if(QUILLMAP_CHECK_HEADERS AND ARG_HEADERS)
    quillmap_check_headers(${name} ${ARG_HEADERS})
  endif()
  if(NOT ARG_LINKS STREQUAL "Qt5::Core")
    quillmap_precompile(${name})
  endif()
endfunction()

# Compiles headers of a library alone.
function(quillmap_check_headers name)
  foreach(header IN LISTS ARGN)
    string(MAKE_C_IDENTIFIER ${header} id)
    set(unit ${PROJECT_BINARY_DIR}/headers/${id}.cpp)
    file(CONFIGURE OUTPUT ${unit} CONTENT "#include \"${header}\"\n")
    list(APPEND units ${unit})
  endforeach()
  add_library(${name}_headers OBJECT ${units})
  set_target_properties(${name}_headers PROPERTIES
    AUTOMOC OFF AUTOUIC OFF AUTORCC OFF QUILLMAP_UNCOUNTED ON)
  target_link_libraries(${name}_headers PRIVATE quillmap_flags ${name})
endfunction()

# quillmap_test(FOLDER/tst_Name LIBRARY...)
#
# Declares the Qt Test program tests/FOLDER/tst_Name.cpp with the libraries that it tests. ctest
# runs it offscreen. It also links test_support.
function(quillmap_test path)
  get_filename_component(name ${path} NAME)
  # The test's own class is all that needs moc. AUTOMOC would compile one more source for each test.
  set(moc ${CMAKE_CURRENT_BINARY_DIR}/moc/${name}.moc)
  qt5_generate_moc(${path}.cpp ${moc})
  add_executable(${name} ${path}.cpp ${moc})
  set_target_properties(${name} PROPERTIES AUTOMOC OFF AUTOUIC OFF)
  target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/moc)
  target_link_libraries(${name} PRIVATE quillmap_flags test_support Qt5::Test ${ARGN})
  # Tests use plain literals, which are UTF-8 here, because expected texts are easier to read that
  # way.
  set(options -UQT_NO_CAST_FROM_ASCII)
  # With sanitizers, optimizing a test takes longer than the test gains.
  if(QUILLMAP_SANITIZE)
    list(APPEND options -O0)
  endif()
  target_compile_options(${name} PRIVATE ${options})
  # What only Linux does is left out. Other tests are compiled alike for every platform.
  file(STRINGS ${path}.cpp has_portable_form REGEX QUILLMAP_PORTABLE)
  if(has_portable_form AND QUILLMAP_PLATFORM STREQUAL portable)
    target_compile_definitions(${name} PRIVATE QUILLMAP_PORTABLE)
  endif()
  quillmap_precompile(${name} ${options})
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 600 ENVIRONMENT "${QUILLMAP_TEST_ENVIRONMENT}")
endfunction()
