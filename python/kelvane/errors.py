"""What goes wrong, for a person to read."""


class KelvaneError(ValueError):
    """A file that is damaged, a name that does not exist. The text names file, field and fault."""


class ExpressionError(KelvaneError):
    """An expression that is none of ours, or that does not apply to the data."""


class KelvaneWarning(UserWarning):
    """Something was passed over, such as a damaged file beside the one that was asked for."""
