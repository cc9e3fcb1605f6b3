// Renders 3D image volumes with Zentra3DRendering.dll, a Windows DLL: build for its platform, x86 or x64. It lies beside the
// program. Its header, Zentra3DRendering.h, is the reference for what each function does.
using System;
using System.IO;
using System.Runtime.ExceptionServices;
using System.Runtime.InteropServices;
using System.Text;
using System.Threading;

namespace Zentra3D
{
    /// <summary>What a projection shows.</summary>
    public enum RenderMode : short
    {
        Maximum = 0,
        Minimum = 1,
        Sum = 2,
        /// <summary>The first surface, or layered surfaces where Extra is not 0.</summary>
        Surface = 3,
        Blend = 4,
        Contrast = 5,
        FirstHit = 6,
    }

    /// <summary>What the library tells its callback.</summary>
    public enum ProgressCode
    {
        Failed = 0,
        Start = 101,
        Percent = 102,
        NoGrey = 200,
    }

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    public delegate int ProgressCallback(UIntPtr user, ProgressCode code, uint value);

    /// <summary>The functions of the DLL as its header declares them.</summary>
    public static class NativeMethods
    {
        public const string Dll = "Zentra3DRendering.dll";
        public const int ProgressCancel = 200;

        [StructLayout(LayoutKind.Sequential)]
        public struct Image2D
        {
            public IntPtr Mem, Rows;
            public ushort Width, Height;
            public uint BytesPerPixel;
        }

        [StructLayout(LayoutKind.Sequential)]
        public struct Volume3D
        {
            public IntPtr Slices, SliceRows;
            public ushort Width, Height, Depth;
        }

        [DllImport(Dll)] public static extern IntPtr GlobalAlloc2D(uint width, uint height, uint bytesPerPixel);
        [DllImport(Dll)] public static extern IntPtr GlobalAlloc3D(uint width, uint height, uint depth, uint bytesPerPixel);
        [DllImport(Dll)] public static extern IntPtr GlobalLock2D(IntPtr image);
        [DllImport(Dll)] public static extern IntPtr GlobalLock3D(IntPtr volume);
        /// <returns>0 for success.</returns>
        [DllImport(Dll)] public static extern int GlobalUnlock2D(IntPtr image);
        /// <returns>0 for success.</returns>
        [DllImport(Dll)] public static extern int GlobalUnlock3D(IntPtr volume);
        [DllImport(Dll)] public static extern void GlobalFree2D(IntPtr image);
        [DllImport(Dll)] public static extern void GlobalFree3D(IntPtr volume);
        [DllImport(Dll)] public static extern void Free3DData(IntPtr volume);
        [DllImport(Dll)] public static extern void GetRotDim(IntPtr volume, float[] rotation, short x0, short x1, short y0,
            short y1, short z0, short z1, out ushort width, out ushort height, int reserved);
        [DllImport(Dll)] public static extern IntPtr GetRotProjection(IntPtr volume, float[] rotation, short mode, short x0,
            short x1, short y0, short y1, short z0, short z1, float high, float low, float extra, out ushort width,
            out ushort height, int reserved);
        /// <summary>The names in the system's code page, zero-terminated.</summary>
        [DllImport(Dll)] public static extern IntPtr GetRGBImage(byte[] red, byte[] green, byte[] blue, short width,
            short height, short depth, int reserved1, int reserved2, int reserved3, short is8bit, short maxDiagonal,
            out float outMax, out float outMin, IntPtr rangeMax, IntPtr rangeMin, UIntPtr user, ProgressCallback callback,
            int keepChannelsApart);
        /// <returns>The library's own text: never a string, which would be freed.</returns>
        [DllImport(Dll)] public static extern IntPtr SetRenderMsgTitle(byte[] title);
        [DllImport(Dll)] public static extern void CreateRotateMatrix([Out] double[] matrix, short[] order, float angleX,
            float angleY, float angleZ);
        [DllImport(Dll)] public static extern void GetAngleXY([Out] double[] matrix, double m02, double m12, double m22,
            out float angleX, out float angleY, float angleZ);
        [DllImport(Dll)] public static extern void GetAngleZX([Out] double[] matrix, double m01, double m11, double m21,
            out float angleX, out float angleZ, float angleY);
        [DllImport(Dll)] public static extern void GetAngleYZ([Out] double[] matrix, double m00, double m10, double m20,
            out float angleY, out float angleZ, float angleX);
        [DllImport(Dll)] public static extern void GetAngleXYZ(double[] matrix, out float angleX, out float angleY,
            out float angleZ);
        [DllImport(Dll)] public static extern void GetAngleZXY(double[] matrix, out float angleX, out float angleY,
            out float angleZ);
        [DllImport(Dll)] public static extern void GetAngleYZX(double[] matrix, out float angleX, out float angleY,
            out float angleZ);
        [DllImport(Dll)] public static extern void ChangeOrder(short[] fromOrder, short[] toOrder, ref float angleX,
            ref float angleY, ref float angleZ);
        [DllImport(Dll)] public static extern int AdjustGamma(byte[] table, float level);
        [DllImport(Dll)] public static extern short SubvolumeConvert(int value, int newScale, int oldScale, short roundUp);

        [DllImport("kernel32.dll")] internal static extern IntPtr GlobalHandle(IntPtr address);
        [DllImport("kernel32.dll")] internal static extern bool GlobalUnlock(IntPtr block);
        [DllImport("kernel32.dll")] internal static extern IntPtr GlobalFree(IntPtr block);
        [DllImport("kernel32.dll", CharSet = CharSet.Unicode)]
        internal static extern uint GetShortPathNameW(string path, StringBuilder shortPath, uint length);
    }

    /// <summary>A crop box in voxels, 1-based, both ends inclusive.</summary>
    public struct Box
    {
        public short X0, X1, Y0, Y1, Z0, Z1;
    }

    /// <summary>How to render: voxels from Low to High count (of RGB volumes, the sum of the channels).</summary>
    public sealed class View
    {
        public RenderMode Mode;
        public float Low, High = 255;
        /// <summary>Attenuation of layered surfaces, transparency of blends.</summary>
        public float Extra;
        /// <summary>Null takes the whole volume.</summary>
        public Box? Crop;
    }

    /// <summary>Three floats per pixel, the top row first.</summary>
    public sealed class Picture
    {
        /// <summary>What a pixel without a contribution holds, in most modes and in the minimum.</summary>
        public const float NoValue = float.MinValue, NoMinimum = float.MaxValue;

        public readonly int Width, Height;
        public readonly float[] Pixels;

        internal Picture(int width, int height)
        {
            Width = width;
            Height = height;
            Pixels = new float[3 * width * height];
        }
    }

    /// <summary>Up to three raw files of one stored size; null is no such channel.</summary>
    public sealed class Channels
    {
        public string Red, Green, Blue;
        public short Width, Height, Depth;
        /// <summary>Samples are 32-bit floats, else bytes.</summary>
        public bool AreFloats;
        /// <summary>The longest diagonal of the result, in voxels.</summary>
        public short MaxDiagonal = short.MaxValue;
        /// <summary>Load a name again that is given twice.</summary>
        public bool KeepApart;
    }

    /// <summary>A stack of equal slices. No two threads may use one volume at the same time.</summary>
    public sealed class Volume : SafeHandle
    {
        private Volume(IntPtr address) : base(IntPtr.Zero, true) { SetHandle(address); }

        public override bool IsInvalid { get { return handle == IntPtr.Zero; } }
        public int Width { get { return Record.Width; } }
        public int Height { get { return Record.Height; } }
        public int Depth { get { return Record.Depth; } }
        /// <summary>The range to display, of a volume from files.</summary>
        public float DisplayLow { get; private set; }
        public float DisplayHigh { get; private set; }

        protected override bool ReleaseHandle()
        {
            NativeMethods.Free3DData(handle);
            return true;
        }

        private NativeMethods.Volume3D Record
        {
            get
            {
                if (IsClosed) throw new ObjectDisposedException("Volume");
                return (NativeMethods.Volume3D)Marshal.PtrToStructure(handle, typeof(NativeMethods.Volume3D));
            }
        }

        /// <summary>Copies voxels, x fastest, then y, then z: one byte is grey, three are red, green, blue.</summary>
        public static Volume FromVoxels(int width, int height, int depth, byte[] voxels, int bytesPerVoxel = 1)
        {
            CheckSize(width, height, depth);
            if (bytesPerVoxel != 1 && bytesPerVoxel != 3)
                throw new ArgumentOutOfRangeException("bytesPerVoxel", "only 1 and 3 can be rendered");
            long sliceBytes = (long)width * height * bytesPerVoxel;
            if (voxels.LongLength != sliceBytes * depth)
                throw new ArgumentException(voxels.LongLength + " bytes given, " + sliceBytes * depth + " wanted", "voxels");
            var volume = new Volume(NativeMethods.GlobalAlloc3D((uint)width, (uint)height, (uint)depth, (uint)bytesPerVoxel));
            IntPtr slices = volume.IsInvalid ? IntPtr.Zero : NativeMethods.GlobalLock3D(volume.handle);
            if (slices == IntPtr.Zero)
            {
                volume.Dispose();
                throw new OutOfMemoryException("Zentra3DRendering: memory is short");
            }
            for (int z = 0; z < depth; ++z)
            {
                IntPtr rows = Marshal.ReadIntPtr(slices, z * IntPtr.Size);
                Marshal.Copy(voxels, (int)(z * sliceBytes), Marshal.ReadIntPtr(rows), (int)sliceBytes);
            }
            NativeMethods.GlobalUnlock3D(volume.handle);
            return volume;
        }

        /// <summary>Loads channel files: RGB, or grey when all three names are the same.</summary>
        /// <param name="progress">Called on this thread with the percentage of the running phase; phases follow one
        /// another. An exception that it throws ends the loading and is thrown again.</param>
        /// <exception cref="IOException">A file cannot be opened.</exception>
        /// <exception cref="OperationCanceledException">The token was cancelled.</exception>
        public static Volume Load(Channels channels, Action<float> progress = null,
            CancellationToken cancel = default(CancellationToken))
        {
            CheckSize(channels.Width, channels.Height, channels.Depth);
            cancel.ThrowIfCancellationRequested();
            byte[] red = ChannelName(channels.Red), green = ChannelName(channels.Green), blue = ChannelName(channels.Blue);
            if (red == null && green == null && blue == null) throw new ArgumentException("no channel file is named");
            ExceptionDispatchInfo thrown = null;
            ProgressCallback callback = (user, code, value) =>
            {
                try // nothing may be thrown through the library
                {
                    if (code == ProgressCode.Percent && progress != null)
                        progress(BitConverter.ToSingle(BitConverter.GetBytes(value), 0));
                    cancel.ThrowIfCancellationRequested();
                    return 0;
                }
                catch (Exception exception)
                {
                    if (thrown == null) thrown = ExceptionDispatchInfo.Capture(exception);
                    return NativeMethods.ProgressCancel;
                }
            };
            float high, low;
            var volume = new Volume(NativeMethods.GetRGBImage(red, green, blue, channels.Width, channels.Height,
                channels.Depth, 0, 0, 0, (short)(channels.AreFloats ? 0 : 1), channels.MaxDiagonal, out high, out low,
                IntPtr.Zero, IntPtr.Zero, UIntPtr.Zero, callback, channels.KeepApart ? 1 : 0));
            GC.KeepAlive(callback);
            if (!volume.IsInvalid && thrown == null)
            {
                volume.DisplayLow = low;
                volume.DisplayHigh = high;
                return volume;
            }
            volume.Dispose();
            if (thrown != null) thrown.Throw();
            throw new OutOfMemoryException("Zentra3DRendering: memory is short");
        }

        /// <summary>Renders. The rotation has nine floats, see <see cref="Rotation.Of"/>.</summary>
        public Picture Project(float[] rotation, View view)
        {
            if (rotation == null || rotation.Length != 9) throw new ArgumentException("nine floats", "rotation");
            if (view.Mode < RenderMode.Maximum || view.Mode > RenderMode.FirstHit)
                throw new ArgumentOutOfRangeException("view", "there is no mode " + (int)view.Mode);
            NativeMethods.Volume3D size = Record;
            Box crop = view.Crop ?? new Box { X0 = 1, X1 = (short)size.Width, Y0 = 1, Y1 = (short)size.Height, Z0 = 1,
                Z1 = (short)size.Depth };
            ushort width, height;
            IntPtr pixels = NativeMethods.GetRotProjection(handle, rotation, (short)view.Mode, crop.X0, crop.X1, crop.Y0,
                crop.Y1, crop.Z0, crop.Z1, view.High, view.Low, view.Extra, out width, out height, 0);
            GC.KeepAlive(this);
            if (pixels == IntPtr.Zero && width == 0)
                throw new ArgumentException("the rotation is not finite, or too large", "rotation");
            if (pixels == IntPtr.Zero) throw new OutOfMemoryException("Zentra3DRendering: memory is short");
            try
            {
                var picture = new Picture(width, height);
                Marshal.Copy(pixels, picture.Pixels, 0, picture.Pixels.Length);
                return picture;
            }
            finally
            {
                IntPtr block = NativeMethods.GlobalHandle(pixels); // the address is not the handle
                NativeMethods.GlobalUnlock(block);
                NativeMethods.GlobalFree(block);
            }
        }

        private static void CheckSize(params int[] lengths)
        {
            foreach (int length in lengths)
                if (length < 1 || length > short.MaxValue)
                    throw new ArgumentOutOfRangeException("lengths", string.Join(" x ", lengths) + ": each is 1 to 32767");
        }

        // The path in the system's code page, which is all that the library takes. What that code page cannot say goes by
        // its short name. A file that cannot be opened is thrown here, before the library shows it in a message box.
        private static byte[] ChannelName(string path)
        {
            if (string.IsNullOrEmpty(path)) return null;
            using (File.Open(path, FileMode.Open, FileAccess.Read, FileShare.Read)) { }
            var shortPath = new StringBuilder(short.MaxValue);
            byte[] name = Narrow(path);
            if (name == null && NativeMethods.GetShortPathNameW(path, shortPath, (uint)shortPath.Capacity) != 0)
                name = Narrow(shortPath.ToString());
            if (name == null) throw new IOException(path + ": the name cannot be said in the system's code page");
            return name;
        }

        // Null when the way back does not lead to the same text.
        private static byte[] Narrow(string text)
        {
            IntPtr narrow = Marshal.StringToHGlobalAnsi(text);
            try
            {
                if (Marshal.PtrToStringAnsi(narrow) != text) return null;
                int length = 0;
                while (Marshal.ReadByte(narrow, length) != 0) ++length;
                var bytes = new byte[length + 1];
                Marshal.Copy(narrow, bytes, 0, length);
                return bytes;
            }
            finally
            {
                Marshal.FreeHGlobal(narrow);
            }
        }
    }

    public static class Rotation
    {
        /// <summary>One rotation of so many degrees about each axis; order is three of 0 = X, 1 = Y, 2 = Z, leftmost
        /// factor first.</summary>
        public static float[] Of(float angleX, float angleY, float angleZ, params short[] order)
        {
            if (order.Length == 0) order = new short[] { 0, 1, 2 };
            if (order.Length != 3) throw new ArgumentException("three axes", "order");
            var matrix = new double[9];
            NativeMethods.CreateRotateMatrix(matrix, order, angleX, angleY, angleZ);
            return Array.ConvertAll(matrix, element => (float)element);
        }
    }
}
