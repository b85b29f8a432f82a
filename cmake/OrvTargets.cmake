include(CMakePackageConfigHelpers)

option(ORV_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)
option(ORV_BUILD_FUZZERS "Build the fuzz targets with libFuzzer (clang), all code with sanitizers" OFF)
option(ORV_WARNINGS_AS_ERRORS "Treat warnings as errors" ${PROJECT_IS_TOP_LEVEL})

# Settings that every target of this project shares: language, warnings, strict Qt strings, sanitizers.
function(orv_target_defaults TARGET)
    target_compile_features(${TARGET} PUBLIC cxx_std_17)
    set_target_properties(${TARGET} PROPERTIES
        CXX_EXTENSIONS OFF AUTOMOC ON CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    target_compile_definitions(${TARGET} PRIVATE
        QT_NO_KEYWORDS QT_NO_FOREACH QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII
        QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
        QT_DEPRECATED_WARNINGS QT_DISABLE_DEPRECATED_BEFORE=0x050f00)
    target_compile_options(${TARGET} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
        -Wnon-virtual-dtor -Woverloaded-virtual)
    if(ORV_WARNINGS_AS_ERRORS)
        target_compile_options(${TARGET} PRIVATE -Werror)
    endif()
    if(ORV_SANITIZE OR ORV_BUILD_FUZZERS)
        set(SANITIZERS address,undefined)
        if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
            string(APPEND SANITIZERS ,float-divide-by-zero,float-cast-overflow)
        endif()
        target_compile_options(${TARGET} PRIVATE
            -O1 -g1 -fno-omit-frame-pointer -fsanitize=${SANITIZERS} -fno-sanitize-recover=all)
        target_compile_definitions(${TARGET} PRIVATE QT_FORCE_ASSERTS _GLIBCXX_ASSERTIONS)
        target_link_options(${TARGET} PRIVATE -fsanitize=${SANITIZERS})
        if(ORV_BUILD_FUZZERS)
            target_compile_options(${TARGET} PRIVATE -fsanitize=fuzzer-no-link)
        endif()
    endif()
endfunction()

# orv_add_library(NAME EXPORT_SET set PUBLIC_HEADERS … SOURCES … LINKS …)
# A shared library with the alias Orv::<NAME without the leading Orv>, hidden visibility, the header set
# and its place in the package that EXPORT_SET names.
function(orv_add_library NAME)
    cmake_parse_arguments(ARG "" "EXPORT_SET" "PUBLIC_HEADERS;SOURCES;LINKS" ${ARGN})
    string(REGEX REPLACE "^Orv" "" SHORT ${NAME})
    string(TOUPPER ${NAME} UPPER)
    add_library(${NAME} SHARED ${ARG_SOURCES})
    add_library(Orv::${SHORT} ALIAS ${NAME})
    orv_target_defaults(${NAME})
    target_sources(${NAME} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/src
        FILES ${ARG_PUBLIC_HEADERS})
    set_target_properties(${NAME} PROPERTIES EXPORT_NAME ${SHORT} DEFINE_SYMBOL ${UPPER}_BUILD
        VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
    target_link_libraries(${NAME} PUBLIC ${ARG_LINKS})
    if(NOT ORV_SANITIZE AND NOT ORV_BUILD_FUZZERS)
        target_link_options(${NAME} PRIVATE -Wl,--no-undefined)
    endif()
    install(TARGETS ${NAME} EXPORT ${ARG_EXPORT_SET}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endfunction()

# Installs one package: export set <PACKAGE>Targets, config from cmake/<PACKAGE>Config.cmake.in, version.
function(orv_install_package PACKAGE)
    set(DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/${PACKAGE})
    install(EXPORT ${PACKAGE}Targets NAMESPACE Orv:: DESTINATION ${DESTINATION})
    configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/${PACKAGE}Config.cmake.in
        ${PROJECT_BINARY_DIR}/${PACKAGE}Config.cmake INSTALL_DESTINATION ${DESTINATION})
    write_basic_package_version_file(${PROJECT_BINARY_DIR}/${PACKAGE}ConfigVersion.cmake
        COMPATIBILITY SameMajorVersion)
    install(FILES ${PROJECT_BINARY_DIR}/${PACKAGE}Config.cmake
        ${PROJECT_BINARY_DIR}/${PACKAGE}ConfigVersion.cmake DESTINATION ${DESTINATION})
endfunction()

# The library's package, and the bundled host's own where it is built: a host with its own framework
# supplies OrvHost itself.
function(orv_install_packages)
    if(ORV_USE_BUNDLED_HOST)
        orv_install_package(OrvHost)
        install(DIRECTORY ${PROJECT_SOURCE_DIR}/resources/settings ${PROJECT_SOURCE_DIR}/resources/icons
            DESTINATION ${CMAKE_INSTALL_DATADIR}/orv)
    endif()
    orv_install_package(OrvNodeGraph)
endfunction()
