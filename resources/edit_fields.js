function GetFieldValue(NameIn, Required)
{
  var ElemCollection = document.getElementsByName(NameIn);
  var lCount = ElemCollection.length;
  // One box or list; a box that stands alone counts as ticked.
  if (lCount == 1)
    return ElemCollection[0].value;

  // A group of check boxes: what is ticked, in the page's order.
  var Values = new Array();
  for (var i = 0; i < lCount; i++)
  {
    if (ElemCollection[i].checked)
      Values[Values.length] = ElemCollection[i].value;
  }
  return Values.join(";#");
}

function AlertRequired(NameIn, DisplayName)
{
  var ElemCollection = document.getElementsByName(NameIn);
  var lCount = ElemCollection.length;
  alert("Required property: " + DisplayName);
  // The focus stays where it is: this reads the property and calls nothing.
  if (lCount > 0)
    ElemCollection[0].focus;
}

// Called by nobody: a way to see by hand that the script is there.
function NoArguments()
{
  //alert("scheis")
  return "Argumentum";
}
