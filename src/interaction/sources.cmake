# Dragging out, menus and the shelf view logic.
set(MOSSWICK_INTERACTION_SOURCES
  ShelfLayout.h ShelfLayout.cpp
  ShelfToolbarState.h ShelfToolbarState.cpp
  TileDescription.h TileDescription.cpp
  ShelfNotice.h ShelfNotice.cpp
  ItemIcon.h ItemIcon.cpp
  WorkspaceIcons.h
  ThumbnailFolder.h ThumbnailFolder.cpp
  Thumbnailers.h Thumbnailers.cpp
  PreviewGenerator.h PreviewGenerator.cpp
  ThumbnailProvider.h ThumbnailProvider.cpp
  ShelfPalette.h ShelfPalette.cpp
  ShelfColors.h ShelfColors.cpp
  DesktopColorScheme.h
  ApplicationAppearance.h ApplicationAppearance.cpp
  SpringCurve.h SpringCurve.cpp
  MenuContent.h
  ShelfMenus.h ShelfMenus.cpp
  Workspace.h
  FileClipboard.h
  MenuActions.h MenuActions.cpp
  TileMenu.h
  DragPayload.h DragPayload.cpp
  DragTypeOverride.h DragTypeOverride.cpp
  DragSource.h DragSource.cpp
  ShelfKeys.h ShelfKeys.cpp
)
# The shelf view: toolbar, tiles, empty state and drop highlight.
set(MOSSWICK_INTERACTION_VIEW_SOURCES
  ShelfFonts.h ShelfFonts.cpp
  ShelfSymbols.h ShelfSymbols.cpp
  GlassEffects.h GlassEffects.cpp
  ToolbarButton.h ToolbarButton.cpp
  CountLabel.h CountLabel.cpp
  ShelfToolbar.h ShelfToolbar.cpp
  ItemPicture.h ItemPicture.cpp
  DragImage.h DragImage.cpp
  DragOutMimeData.h DragOutMimeData.cpp
  DragOutSession.h DragOutSession.cpp
  ShelfItemView.h ShelfItemView.cpp
  TileListView.h TileListView.cpp
  EmptyStateView.h EmptyStateView.cpp
  DropHighlight.h DropHighlight.cpp
  ShelfAccessibility.h ShelfAccessibility.cpp
  ShelfView.h ShelfView.cpp
  MenuRenderer.h MenuRenderer.cpp
  ShelfMenuPresenter.h ShelfMenuPresenter.cpp
)
