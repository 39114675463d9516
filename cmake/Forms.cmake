# Headers of the forms. Made by commands of the target's own folder, so that the build tool knows
# what depends on them and one build is enough after a form has changed.
qt5_wrap_ui(form_headers
  forms/AEPoint.ui
  forms/AFileSelect.ui
  forms/Body.ui
  forms/DispABase.ui
  forms/DispArea.ui
  forms/Displays.ui
  forms/FourPs.ui
  forms/PopBase.ui
)
target_sources(drovik_gui PRIVATE ${form_headers})
target_include_directories(drovik_gui PUBLIC "${CMAKE_BINARY_DIR}")
