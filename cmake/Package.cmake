# `cmake --build --preset release --target package` makes two packages in build/release: hvmirefold-coreui_VERSION_amd64.deb
# with the library, which depends on Qt alone, and hvmirefold-coreui-pictures_VERSION_amd64.deb with the program that
# reads pictures with OpenImageIO, if the build found that. `release-qt6` makes hvmirefold-coreui-qt6 and
# hvmirefold-coreui-qt6-pictures in build/release-qt6. All can be installed together.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME hvmirefold-coreui${COREUI_SUFFIX})
set(CPACK_PACKAGE_VENDOR Halvern)
set(CPACK_PACKAGE_CONTACT "CoreUI developers <coreui@halvern.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL library)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${CPACK_PACKAGE_NAME})
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION
    "file browser for image sequences and other Qt ${COREUI_QT} components\n\
 Native library, Python module, headers and CMake package of the CoreUI components: a file browser\n\
 that collapses image sequences, a file dialog, a timeline and disclosure buttons.")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS "python3, python3-pyqt${COREUI_QT}, python3-pyqt${COREUI_QT}.sip")
if(COREUI_QT EQUAL 5)
    set(CPACK_DEBIAN_LIBRARY_PACKAGE_SUGGESTS "cmake, qtbase5-dev, python3-dev")
else()
    set(CPACK_DEBIAN_LIBRARY_PACKAGE_SUGGESTS "cmake, qt6-base-dev, python3-dev")
endif()

if(TARGET coreui-pictures-oiio)
    list(APPEND CPACK_COMPONENTS_ALL pictures)
    set(CPACK_DEBIAN_LIBRARY_PACKAGE_RECOMMENDS ${CPACK_PACKAGE_NAME}-pictures)
    set(CPACK_DEBIAN_PICTURES_PACKAGE_NAME ${CPACK_PACKAGE_NAME}-pictures)
    set(CPACK_DEBIAN_PICTURES_PACKAGE_DEPENDS "${CPACK_PACKAGE_NAME} (= ${PROJECT_VERSION})")
    set(CPACK_COMPONENT_PICTURES_DESCRIPTION
        "pictures in the preview of the CoreUI file browser\n\
 The program that reads EXR, DPX and other pictures with OpenImageIO for the preview of the CoreUI\n\
 components. Without it the preview shows the pictures that Qt reads.")
endif()
include(CPack)
