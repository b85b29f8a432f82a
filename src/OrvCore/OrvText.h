#pragma once

#include "OrvCore/OrvCoreExport.h"

#include <QString>

/// True when the text holds HTML markup that a rich text item would show differently from plain
/// text: a tag of the HTML subset that Qt draws, opening ("<b>", "<br/>", "<font color='red'>"),
/// closing
/// ("</p>"), a comment or a document type. Upper and lower case count alike. Plain text that only
/// resembles markup stays plain: "a < b", "vector<float>", "x<b and c>y", and entities alone
/// ("&amp;"). Only the beginning of a very long text is looked at (some ten thousand characters),
/// so that the answer costs the same for a pasted document as for a label.
///
/// Called by  the UI node, for every label it is given.
/// Uses       nothing else.
/// Tells      nobody.
ORVCORE_EXPORT bool OrvIsHtmlText(const QString& text);

/// Makes HTML keep the runs of spaces in its text: in a run of two or more spaces all but the first
/// become U+00A0, so that lines can still wrap there. A run at the beginning of the text, of a line
/// or behind a tag becomes U+00A0 as a whole, because HTML may drop its first space. Single spaces,
/// other white space and the inside of tags stay as they are.
///
/// Called by  the UI node, on the label that it stores, once the label has proved to be HTML.
/// Uses       nothing else.
/// Tells      nobody.
ORVCORE_EXPORT void OrvReplaceConsecutiveSpacesWithNbsp(QString& text);
