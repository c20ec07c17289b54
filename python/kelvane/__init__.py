"""The datasets and sample filters of a Kelvane project, in NumPy.

    import kelvane

    project = kelvane.Project("survey")
    meuse = project.dataset("meuse")
    rich = meuse.evaluate("data['zinc'] > 300.0")          # one truth value a sample
    forest = meuse.select(project.filter("rich forest"))   # what a person saved
    print(meuse["zinc"][rich & ~meuse.mask].mean())

Files are read, never written. On a cluster: `kelvane.cluster`. The guide is docs/python.md.
"""

from .columns import Categories, Colors, Texts, qm_find
from .dataset import Dataset, Project, Variable
from .errors import ExpressionError, KelvaneError, KelvaneWarning
from .expression import Expression, evaluate
from .filters import Rule, SampleFilter

__version__ = "0.1.0"

__all__ = [
    "Categories",
    "Colors",
    "Dataset",
    "Expression",
    "ExpressionError",
    "KelvaneError",
    "KelvaneWarning",
    "Project",
    "Rule",
    "SampleFilter",
    "Texts",
    "Variable",
    "evaluate",
    "qm_find",
]
