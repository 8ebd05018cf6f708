# `cmake --build --preset release --target package` makes build/release/hvmirefold-coreui_VERSION_amd64.deb, and
# `release-qt6` makes build/release-qt6/hvmirefold-coreui-qt6_VERSION_amd64.deb. Both can be installed.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME hvmirefold-coreui${COREUI_SUFFIX})
set(CPACK_PACKAGE_VENDOR Halvern)
set(CPACK_PACKAGE_CONTACT "CoreUI developers <coreui@halvern.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "file browser for image sequences and other Qt ${COREUI_QT} components")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "Native library, Python module, headers and CMake package of the CoreUI components: a file browser\n\
 that collapses image sequences, a file dialog, a timeline and disclosure buttons.")
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "python3, python3-pyqt${COREUI_QT}, python3-pyqt${COREUI_QT}.sip")
if(COREUI_QT EQUAL 5)
    set(CPACK_DEBIAN_PACKAGE_SUGGESTS "cmake, qtbase5-dev, python3-dev")
else()
    set(CPACK_DEBIAN_PACKAGE_SUGGESTS "cmake, qt6-base-dev, python3-dev")
endif()
include(CPack)
