#pragma once

class OrvNgCursorPath;

/// Internal. Tells a node that is shaken from one that is moved: the cursor turned back sharply, by more
/// than 135 degrees, four times within half a second.
///
/// Called by  OrvNgView.
/// Uses       OrvNgCursorPath.
/// Tells      nobody.
namespace OrvNgShakeDetector {

/// Judges the path's newest half second, and forgets what is older.
bool isShaken(OrvNgCursorPath& path);

} // namespace OrvNgShakeDetector
