# The Debian package: cpack -G DEB in the build folder.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME drovik)
set(CPACK_PACKAGE_VENDOR "The drovik developers")
set(CPACK_PACKAGE_CONTACT "The drovik developers <drovik@users.noreply.github.com>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "mean valence from X-ray absorption spectra")
set(CPACK_PACKAGE_DESCRIPTION
  "drovik reads the absorption spectra of two reference compounds, of a sample
and of a blank, and finds the fraction of each valence state in the sample,
its mean valence and its thickness against that of the references: by
three-point and four-point methods, by a linear combination fit, and for every
pixel of a set of images. The interface is Japanese, or English with -e.")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS hicolor-icon-theme) # lists the folders of the icon's pictures
# Without a font that has Japanese letters the default interface is a row of empty boxes.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
  "fonts-ipafont-gothic | fonts-noto-cjk | fonts-vlgothic, qtwayland5")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

include(CPack)
