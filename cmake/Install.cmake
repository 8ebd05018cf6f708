# An installed tree: the library, its public headers in the folders they have here, and a package for
# find_package(HvMirefoldCoreUI) with the target HvMirefold::CoreUI.
include(CMakePackageConfigHelpers)

set(COREUI_PUBLIC_HEADERS
    base/Export.h
    base/FileHandle.h
    base/FileSystem.h
    base/Locale.h
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
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/HvMirefoldCoreUI/${folder})
endforeach()

# The same file, found under its name where Debian's Python looks for modules, and its types for editors and checkers.
set(COREUI_PYTHON_DIR lib/python3/dist-packages)
set(link ${PROJECT_BINARY_DIR}/python/_HvMirefoldCoreUI.abi3.so)
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/python)
file(CREATE_LINK ../../_HvMirefoldCoreUI.abi3.so ${link} SYMBOLIC)
install(FILES ${link} DESTINATION ${COREUI_PYTHON_DIR})
# The types of the module, for editors and type checkers, beside both.
foreach(folder IN ITEMS ${COREUI_PYTHON_DIR} ${CMAKE_INSTALL_LIBDIR})
    install(FILES ${COREUI_TYPE_STUB} DESTINATION ${folder})
endforeach()

set_target_properties(CoreUI PROPERTIES EXPORT_NAME CoreUI)
install(TARGETS CoreUI EXPORT HvMirefoldCoreUITargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})

set(COREUI_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/HvMirefoldCoreUI)
install(EXPORT HvMirefoldCoreUITargets NAMESPACE HvMirefold:: DESTINATION ${COREUI_PACKAGE_DIR})
configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/HvMirefoldCoreUIConfig.cmake.in
    ${PROJECT_BINARY_DIR}/HvMirefoldCoreUIConfig.cmake
    INSTALL_DESTINATION ${COREUI_PACKAGE_DIR})
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/HvMirefoldCoreUIConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/HvMirefoldCoreUIConfig.cmake
    ${PROJECT_BINARY_DIR}/HvMirefoldCoreUIConfigVersion.cmake
    ${PROJECT_SOURCE_DIR}/cmake/PythonForPyQt.cmake
    DESTINATION ${COREUI_PACKAGE_DIR})
