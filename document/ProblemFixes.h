#pragma once

#include <QString>

#include <memory>

class Document;
class Edit;
struct Problem;

// Edits that mend what a finding is about: the maximum becomes the minimum, a radius comes into its
// range, bits without a flag type are cleared, a hidden territory is shown, greys become 255, an
// event gets the usage that it is named like. Other findings need the user's judgement.

/// Whether one edit mends it. False when its thing is no longer in the project.
bool CanFix(const Document& document, const Problem& problem);
/// The edit; null when there is none, and without memory for it.
std::unique_ptr<Edit> MakeFix(const Document& document, const Problem& problem);
/// One sentence for the user: what the edit does, or why there is none. Empty when there is nothing
/// to say.
QString DescribeFix(const Document& document, const Problem& problem);
