# Precompiled headers of the standard library, GDAL, Qt and GoogleTest. They only save time: every source includes what
# it uses. A precompiled header is made once per kind of target and shared by all targets of that kind.
set(orvex_std_headers algorithm array atomic charconv chrono cmath cstddef cstdint cstring filesystem fstream functional
    limits map memory mutex optional set span stdexcept string string_view thread utility vector)
set(orvex_gdal_headers cpl_conv.h cpl_string.h gdal.h gdal_priv.h ogr_spatialref.h)
set(orvex_qt_headers QApplication QCheckBox QDialog QDir QHBoxLayout QIcon QLabel QLineEdit QMessageBox QMimeData
    QProgressBar QPushButton QRadioButton QScrollBar QTabBar QTableView QTimer QUrl QVBoxLayout)
set(orvex_test_headers gmock/gmock.h gtest/gtest.h)

set(orvex_empty_source "${CMAKE_BINARY_DIR}/precompiled/empty.cpp")
file(CONFIGURE OUTPUT "${orvex_empty_source}" CONTENT "// Precompiled headers belong to a target, and a target has a source.\n")

# Tests run once and compile often: they are not optimised, in no preset.
function(orvex_test_options target)
    target_compile_options(${target} PRIVATE -O0)
    if(WIN32)
        # Without optimisation a test has more sections than an ordinary object file of Windows can hold.
        target_compile_options(${target} PRIVATE -Wa,-mbig-obj)
    endif()
endfunction()

# orvex_precompiled_header(KIND HEADERS header... LIBS library...) makes the precompiled header orvex_KIND_headers.
function(orvex_precompiled_header kind)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "HEADERS;LIBS")
    set(target orvex_${kind}_headers)
    add_library(${target} OBJECT EXCLUDE_FROM_ALL "${orvex_empty_source}")
    orvex_common_options(${target})
    if(kind MATCHES "test")
        orvex_test_options(${target})
    endif()
    target_link_libraries(${target} PRIVATE ${ARG_LIBS})
    list(TRANSFORM ARG_HEADERS PREPEND "<")
    list(TRANSFORM ARG_HEADERS APPEND ">")
    target_precompile_headers(${target} PRIVATE ${ARG_HEADERS})
endfunction()

function(orvex_declare_precompiled_headers)
    orvex_precompiled_header(std HEADERS ${orvex_std_headers})
    orvex_precompiled_header(gdal HEADERS ${orvex_std_headers} ${orvex_gdal_headers} LIBS GDAL::GDAL)
    orvex_precompiled_header(qt HEADERS ${orvex_std_headers} ${orvex_qt_headers} LIBS Qt6::Widgets)
    orvex_precompiled_header(test HEADERS ${orvex_std_headers} ${orvex_test_headers} LIBS GTest::gmock)
    # Without Qt Test, which defines a macro that differs from folder to folder.
    orvex_precompiled_header(qt_test HEADERS ${orvex_std_headers} ${orvex_test_headers} ${orvex_qt_headers}
                             LIBS GTest::gmock Qt6::Widgets)
endfunction()

# Gives every target of orvex_common_options the precompiled header that fits the libraries it links.
function(orvex_share_precompiled_headers)
    get_property(targets GLOBAL PROPERTY ORVEX_TARGETS)
    orvex_declare_precompiled_headers()
    foreach(target IN LISTS targets)
        orvex_all_linked_names(${target} linked)
        orvex_linked_names(${target} linked_directly)
        set(kind std)
        if("GTest::gmock" IN_LIST linked AND "Qt6::Widgets" IN_LIST linked)
            set(kind qt_test)
        elseif("GTest::gmock" IN_LIST linked)
            set(kind test)
        elseif("Qt6::Widgets" IN_LIST linked)
            set(kind qt)
        elseif("GDAL::GDAL" IN_LIST linked_directly OR "orvex_gdal" IN_LIST linked_directly)
            set(kind gdal)
        endif()
        if(kind MATCHES "test")
            orvex_test_options(${target})
        endif()
        target_precompile_headers(${target} REUSE_FROM orvex_${kind}_headers)
        # One that does not fit costs time and breaks nothing.
        target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-error=invalid-pch>)
    endforeach()
endfunction()

cmake_language(DEFER DIRECTORY "${CMAKE_SOURCE_DIR}" CALL orvex_share_precompiled_headers)
