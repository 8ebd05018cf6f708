# Installs the library, its public headers with their folders, a package for find_package(HvMirefoldCoreUI) with the
# target HvMirefold::CoreUI, the Python module and package, and the documents. The components are library, development,
# python and pictures.
include(CMakePackageConfigHelpers)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)

set(COREUI_PUBLIC_HEADERS
    base/Export.h
    base/FileHandle.h
    base/FileSystem.h
    base/Text.h
    browser/FileBrowser.h
    catalogue/EntryPool.h
    catalogue/FileInfo.h
    catalogue/FileInfoList.h
    catalogue/FileInfoWrapper.h
    catalogue/FileManager.h
    catalogue/FileSequenceEvaluator.h
    dialog/FCPreviewInfo.h
    dialog/FileDialog.h
    dialog/FilePreview.h
    favorites/Favorite.h
    frames/FrameRange.h
    frames/FrameRanges.h
    paths/Filename.h
    paths/Path.h
    pictures/Picture.h
    pictures/PictureCache.h
    pictures/PictureReader.h
    widgets/AppSettings.h
    widgets/DisclosableWidget.h
    widgets/DisclosureButton.h
    widgets/FilePathEdit.h
    widgets/FrameSlider.h
    widgets/PackedColour.h
    widgets/VisibilitySetter.h)

foreach(header IN LISTS COREUI_PUBLIC_HEADERS)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES ${PROJECT_SOURCE_DIR}/src/${header}
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/HvMirefoldCoreUI${COREUI_SUFFIX}/${folder})
endforeach()

set_target_properties(CoreUI PROPERTIES EXPORT_NAME CoreUI)
install(TARGETS CoreUI EXPORT HvMirefoldCoreUITargets LIBRARY DESTINATION ${COREUI_MODULE_DIR} COMPONENT library)
# The types of the module, for editors and type checkers. The latter read those of an installed module from a package of
# this name only.
install(FILES ${coreui_generated_STUB} DESTINATION ${COREUI_MODULE_DIR} COMPONENT python)
install(FILES ${coreui_generated_STUB} DESTINATION ${COREUI_MODULE_DIR}/_HvMirefoldCoreUI-stubs RENAME __init__.pyi
    COMPONENT python)

# The Python package beside the module.
set(package ${COREUI_MODULE_DIR}/HvMirefoldCoreUI)
install(TARGETS CoreUIPackage LIBRARY DESTINATION ${package} COMPONENT python)
install(FILES ${coreui_package_generated_STUB} DESTINATION ${package} COMPONENT python)
foreach(file IN LISTS COREUI_PACKAGE_FILES)
    get_filename_component(folder ${package}/${file} DIRECTORY)
    install(FILES ${PROJECT_SOURCE_DIR}/src/python/package/${file} DESTINATION ${folder} COMPONENT python)
endforeach()

# The build for Qt 5 is also found under its name by the linker and by Debian's Python.
function(coreui_link component folder target)
    get_filename_component(name ${target} NAME)
    set(link ${PROJECT_BINARY_DIR}/links/${folder}/${name})
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/links/${folder})
    file(CREATE_LINK ${target} ${link} SYMBOLIC)
    install(FILES ${link} DESTINATION ${folder} COMPONENT ${component})
endfunction()
if(COREUI_QT EQUAL 5)
    coreui_link(library lib HvMirefoldCoreUI-qt5/_HvMirefoldCoreUI.abi3.so)
    foreach(name _HvMirefoldCoreUI.abi3.so _HvMirefoldCoreUI.pyi _HvMirefoldCoreUI-stubs HvMirefoldCoreUI)
        coreui_link(python lib/python3/dist-packages ../../HvMirefoldCoreUI-qt5/${name})
    endforeach()
endif()

# The programs that read pictures. The library starts the one with OpenImageIO if it is there, and else the other.
install(TARGETS coreui-pictures RUNTIME DESTINATION ${COREUI_LIBEXEC_DIR} COMPONENT library)
if(TARGET coreui-pictures-oiio)
    install(TARGETS coreui-pictures-oiio RUNTIME DESTINATION ${COREUI_LIBEXEC_DIR} COMPONENT pictures)
endif()

set(COREUI_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/HvMirefoldCoreUI${COREUI_SUFFIX})
install(EXPORT HvMirefoldCoreUITargets NAMESPACE HvMirefold:: DESTINATION ${COREUI_PACKAGE_DIR})
configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/HvMirefoldCoreUIConfig.cmake.in
    ${PROJECT_BINARY_DIR}/HvMirefoldCoreUIConfig.cmake
    INSTALL_DESTINATION ${COREUI_PACKAGE_DIR})
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/HvMirefoldCoreUIVersion.cmake COMPATIBILITY SameMinorVersion)
configure_file(
    ${PROJECT_SOURCE_DIR}/cmake/HvMirefoldCoreUIConfigVersion.cmake.in
    ${PROJECT_BINARY_DIR}/HvMirefoldCoreUIConfigVersion.cmake @ONLY)
install(FILES
    ${PROJECT_BINARY_DIR}/HvMirefoldCoreUIConfig.cmake
    ${PROJECT_BINARY_DIR}/HvMirefoldCoreUIConfigVersion.cmake
    ${PROJECT_BINARY_DIR}/HvMirefoldCoreUIVersion.cmake
    ${PROJECT_SOURCE_DIR}/cmake/PythonForPyQt.cmake
    DESTINATION ${COREUI_PACKAGE_DIR})

set(documents ${CMAKE_INSTALL_DATADIR}/doc/hvmirefold-coreui${COREUI_SUFFIX})
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION ${documents})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples DESTINATION ${documents}
    PATTERN __pycache__ EXCLUDE)
