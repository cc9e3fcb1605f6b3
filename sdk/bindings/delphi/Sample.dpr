{ Renders a volume in every mode and loads one from files. Run it in the folder samples/data. }
program Sample;
{$APPTYPE CONSOLE}{$IFDEF FPC}{$MODE DELPHI}{$ENDIF}{$Q-}{$R-}
uses SysUtils, Classes, Zentra3D;

type
  TSample = class
    class procedure CancelAtHalf(Percent: Single; var Cancel: Boolean);
  end;

class procedure TSample.CancelAtHalf(Percent: Single; var Cancel: Boolean);
begin
  Cancel := Percent >= 50;
  if Cancel then WriteLn(Format('cancelled at %.0f %%', [Percent]));
end;

procedure Print(const Name: string; Volume: TZentraVolume; const View: TZentraView);
var
  Picture: TZentraPicture;
  Checksum: LongWord; { FNV-1a }
  I: Integer;
begin
  Picture := Volume.Project(ZentraRotation(30, 40, 50), View);
  Checksum := $811C9DC5;
  for I := 0 to Length(Picture.Pixels) * SizeOf(Single) - 1 do
    Checksum := LongWord(Int64(Checksum xor PByte(PAnsiChar(Picture.Pixels) + I)^) * $01000193);
  WriteLn(Format('%-9s %2d x %2d  %.8x', [Name, Picture.Width, Picture.Height, Checksum]));
end;

var
  Voxels: TBytes;
  Volume: TZentraVolume;
begin
  with TFileStream.Create('grey.raw', fmOpenRead) do
  begin
    SetLength(Voxels, Size);
    ReadBuffer(Voxels[0], Size);
    Free;
  end;
  Volume := TZentraVolume.Create(48, 40, 32, Voxels);
  Print('maximum', Volume, ZentraView(rmMaximum, 0, 255));
  Print('minimum', Volume, ZentraView(rmMinimum, 1, 255));
  Print('sum', Volume, ZentraView(rmSum, 0, 255));
  Print('surface', Volume, ZentraView(rmSurface, 60, 256));
  Print('layers', Volume, ZentraView(rmSurface, 60, 256, 0.5));
  Print('blend', Volume, ZentraView(rmBlend, 0, 255, 0.5));
  Print('contrast', Volume, ZentraView(rmContrast, 0, 256));
  Print('first hit', Volume, ZentraView(rmFirstHit, 60, 255));
  Volume.Free;
  Volume := TZentraVolume.CreateFromFiles('red.raw', 'green.raw', 'blue.raw', 48, 40, 32, 60);
  WriteLn(Format('loaded    %d x %d x %d, display range %.0f to %.0f', [Volume.Width, Volume.Height, Volume.Depth,
    Volume.DisplayLow, Volume.DisplayHigh]));
  Print('colour', Volume, ZentraView(rmMaximum, 0, 765));
  Volume.Free;
  try
    TZentraVolume.CreateFromFiles('red.raw', 'green.raw', 'blue.raw', 48, 40, 32, 60, TSample.CancelAtHalf).Free;
  except
    on EZentraCancelled do; { as it was asked to }
  end;
end.
