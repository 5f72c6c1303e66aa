<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>BuildMessages</name>
    <message>
        <source>Channel</source>
        <translation>渠道</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>消息</translation>
    </message>
</context>
<context>
    <name>BuildModel</name>
    <message>
        <source>%1 %</source>
        <translation>%1%</translation>
    </message>
    <message>
        <source>Channel</source>
        <translation>渠道</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>文件夹</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>进度</translation>
    </message>
    <message>
        <source>Result</source>
        <translation>结果</translation>
    </message>
    <message>
        <source>waiting</source>
        <translation>等待中</translation>
    </message>
    <message>
        <source>failed: %1</source>
        <translation>失败：%1</translation>
    </message>
</context>
<context>
    <name>BuildPage</name>
    <message>
        <source>%1: %2</source>
        <translation>%1：%2</translation>
    </message>
    <message>
        <source>Build</source>
        <translation>构建</translation>
    </message>
    <message>
        <source>The packages of %1 are being built.</source>
        <translation>正在构建 %1 的安装包。</translation>
    </message>
    <message>
        <source>No job is open. Open one, or begin a new one, on the start page.</source>
        <translation>没有打开任务。请在开始页打开一个任务或新建一个。</translation>
    </message>
    <message>
        <source>&amp;All channels</source>
        <translation>所有渠道(&amp;A)</translation>
    </message>
    <message>
        <source>&amp;Unchanged ones, too</source>
        <translation>包括无变化的(&amp;U)</translation>
    </message>
    <message>
        <source>&amp;Build</source>
        <translation>构建(&amp;B)</translation>
    </message>
    <message>
        <source>S&amp;top</source>
        <translation>停止(&amp;T)</translation>
    </message>
    <message>
        <source>Progress of the build</source>
        <translation>构建进度</translation>
    </message>
    <message>
        <source>Time left</source>
        <translation>剩余时间</translation>
    </message>
    <message>
        <source>Outcome of the build</source>
        <translation>构建结果</translation>
    </message>
    <message>
        <source>Channels, messages, report</source>
        <translation>渠道、消息、报告</translation>
    </message>
    <message>
        <source>&amp;Channels</source>
        <translation>渠道(&amp;C)</translation>
    </message>
    <message>
        <source>&amp;Messages</source>
        <translation>消息(&amp;M)</translation>
    </message>
    <message>
        <source>&amp;Report</source>
        <translation>报告(&amp;R)</translation>
    </message>
    <message>
        <source>Channels</source>
        <translation>渠道</translation>
    </message>
    <message>
        <source>&amp;Whole message of the channel:</source>
        <translation>该渠道的完整消息(&amp;W)：</translation>
    </message>
    <message>
        <source>Whole message of the channel</source>
        <translation>该渠道的完整消息</translation>
    </message>
    <message>
        <source>&amp;Only of the channel:</source>
        <translation>仅显示渠道(&amp;O)：</translation>
    </message>
    <message>
        <source>Only of the channel</source>
        <translation>仅显示渠道</translation>
    </message>
    <message>
        <source>Messages</source>
        <translation>消息</translation>
    </message>
    <message>
        <source>Report</source>
        <translation>报告</translation>
    </message>
    <message>
        <source>Open in the bro&amp;wser</source>
        <translation>在浏览器中打开(&amp;W)</translation>
    </message>
    <message>
        <source>The report of the last build. What is cut off shows in full under the pointer.</source>
        <translation>上次构建的报告。被截断的内容会在指针处完整显示。</translation>
    </message>
    <message>
        <source>Stopping behind the step at hand</source>
        <translation>当前步骤结束后停止</translation>
    </message>
    <message>
        <source>There is no report yet. Build the channels.</source>
        <translation>还没有报告。请先构建渠道。</translation>
    </message>
    <message>
        <source>Choose at least one channel.</source>
        <translation>请至少选择一个渠道。</translation>
    </message>
    <message>
        <source>Save the job before the build?</source>
        <translation>构建前要保存任务吗？</translation>
    </message>
    <message>
        <source>A build reads the job&apos;s file, which lacks your latest edits.</source>
        <translation>构建读取任务文件，其中没有您最近的修改。</translation>
    </message>
    <message>
        <source>&amp;Save and build</source>
        <translation>保存并构建(&amp;S)</translation>
    </message>
    <message>
        <source>beginning</source>
        <translation>正在开始</translation>
    </message>
    <message>
        <source>%1 of %2 channels</source>
        <translation>%2 个渠道中的 %1 个</translation>
    </message>
    <message>
        <source>, %1</source>
        <translation>，%1</translation>
    </message>
    <message>
        <source>Built: %1, unchanged: %2.</source>
        <translation>已构建：%1，无变化：%2。</translation>
    </message>
    <message>
        <source>Stopped. %1 The next build goes on with the rest.</source>
        <translation>已停止。%1下次构建会继续其余渠道。</translation>
    </message>
    <message>
        <source>Failed: %1. %2 Choose a failed channel to see why.</source>
        <translation>失败：%1。%2选择失败的渠道可查看原因。</translation>
    </message>
    <message>
        <source>The build did not come to its end. The messages tell why.</source>
        <translation>构建没有完成。原因见消息。</translation>
    </message>
    <message>
        <source>Builds the channels that are chosen on the page Channels, and no others</source>
        <translation>只构建在“渠道”页面中选中的渠道</translation>
    </message>
    <message>
        <source>Build cho&amp;sen: %1</source>
        <translation>构建选中的渠道(&amp;S)：%1</translation>
    </message>
</context>
<context>
    <name>BuildProcess</name>
    <message>
        <source>The program %1 cannot be started. Install it beside the window, and build again.</source>
        <translation>无法启动程序 %1。请把它安装在窗口程序旁边，然后重新构建。</translation>
    </message>
    <message>
        <source>The build crashed. Build again: it goes on where it stood. %1</source>
        <translation>构建崩溃。请重新构建：会从中断处继续。%1</translation>
    </message>
</context>
<context>
    <name>BuildWords</name>
    <message>
        <source>clearing</source>
        <translation>正在清理</translation>
    </message>
    <message>
        <source>taking icons</source>
        <translation>正在取用图标</translation>
    </message>
    <message>
        <source>writing the manifest</source>
        <translation>正在写入清单</translation>
    </message>
    <message>
        <source>packing</source>
        <translation>正在打包</translation>
    </message>
    <message>
        <source>encrypting</source>
        <translation>正在加密</translation>
    </message>
    <message>
        <source>signing</source>
        <translation>正在签名</translation>
    </message>
    <message>
        <source>checking</source>
        <translation>正在检查</translation>
    </message>
    <message>
        <source>exporting its record</source>
        <translation>正在导出记录</translation>
    </message>
    <message>
        <source>handing out</source>
        <translation>正在输出</translation>
    </message>
    <message>
        <source>built</source>
        <translation>已构建</translation>
    </message>
    <message>
        <source>unchanged</source>
        <translation>无变化</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>失败</translation>
    </message>
    <message>
        <source>not reached</source>
        <translation>未进行</translation>
    </message>
    <message>
        <source>about %1 s left</source>
        <translation>约剩 %1 秒</translation>
    </message>
    <message>
        <source>about %1 min left</source>
        <translation>约剩 %1 分钟</translation>
    </message>
</context>
<context>
    <name>ChannelTable</name>
    <message>
        <source>Built</source>
        <translation>已构建</translation>
    </message>
    <message>
        <source>Unchanged</source>
        <translation>无变化</translation>
    </message>
    <message>
        <source>Failed</source>
        <translation>失败</translation>
    </message>
    <message>
        <source>Not reached</source>
        <translation>未处理</translation>
    </message>
    <message>
        <source>No.</source>
        <translation>序号</translation>
    </message>
    <message>
        <source>Channel</source>
        <translation>渠道</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>文件夹</translation>
    </message>
    <message>
        <source>SDKs</source>
        <translation>SDK</translation>
    </message>
    <message>
        <source>Package name</source>
        <translation>包名</translation>
    </message>
    <message>
        <source>Last outcome</source>
        <translation>上次结果</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>是</translation>
    </message>
    <message>
        <source>No</source>
        <translation>否</translation>
    </message>
    <message>
        <source>Number</source>
        <translation>记录编号</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>文件</translation>
    </message>
    <message>
        <source>Encrypted</source>
        <translation>加密</translation>
    </message>
</context>
<context>
    <name>ChannelsPage</name>
    <message>
        <source>Channels</source>
        <translation>渠道</translation>
    </message>
    <message>
        <source>No job is open. Open one from the File menu, or drop its file on the start page.</source>
        <translation>没有打开的任务。请从“文件”菜单打开一个，或将任务文件拖放到“开始”页。</translation>
    </message>
    <message>
        <source>This job has no channels yet. Press Add to make the first one.</source>
        <translation>此任务还没有渠道。请按“添加”建立第一个渠道。</translation>
    </message>
    <message>
        <source>No channel has this text. Clear the filter to see all of them.</source>
        <translation>没有渠道含有此文字。清除筛选即可查看全部渠道。</translation>
    </message>
    <message>
        <source>Channels: %1, shown: %2, chosen: %3</source>
        <translation>渠道：%1，显示：%2，已选：%3</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>筛选</translation>
    </message>
    <message>
        <source>Filter of the channels</source>
        <translation>渠道筛选</translation>
    </message>
    <message>
        <source>Channels of the job</source>
        <translation>任务的渠道</translation>
    </message>
    <message>
        <source>&amp;Add</source>
        <translation>添加(&amp;A)</translation>
    </message>
    <message>
        <source>Add a channel behind the chosen ones</source>
        <translation>在所选渠道之后添加渠道</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>复制(&amp;C)</translation>
    </message>
    <message>
        <source>Copy the chosen channels</source>
        <translation>复制所选渠道</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>移除(&amp;R)</translation>
    </message>
    <message>
        <source>Remove the chosen channels from the job</source>
        <translation>从任务中移除所选渠道</translation>
    </message>
    <message>
        <source>Move &amp;up</source>
        <translation>上移(&amp;U)</translation>
    </message>
    <message>
        <source>Move the chosen channels up in the job</source>
        <translation>在任务中上移所选渠道</translation>
    </message>
    <message>
        <source>Move do&amp;wn</source>
        <translation>下移(&amp;W)</translation>
    </message>
    <message>
        <source>Move the chosen channels down in the job</source>
        <translation>在任务中下移所选渠道</translation>
    </message>
</context>
<context>
    <name>DeviceList</name>
    <message>
        <source>not authorized</source>
        <translation>未授权</translation>
    </message>
    <message>
        <source>Unlock it, and allow debugging by this computer.</source>
        <translation>请解锁设备，并允许此电脑进行调试。</translation>
    </message>
    <message>
        <source>being authorized</source>
        <translation>正在授权</translation>
    </message>
    <message>
        <source>Wait a moment and refresh the list.</source>
        <translation>请稍候，然后刷新列表。</translation>
    </message>
    <message>
        <source>being connected</source>
        <translation>正在连接</translation>
    </message>
    <message>
        <source>does not answer</source>
        <translation>没有应答</translation>
    </message>
    <message>
        <source>Unplug it and plug it in again; if that does not help, restart it.</source>
        <translation>请拔下后重新插入；如果无效，请重启设备。</translation>
    </message>
    <message>
        <source>not accessible to you</source>
        <translation>您无权访问</translation>
    </message>
    <message>
        <source>Have yourself added to the group plugdev, log in anew, and plug it in again.</source>
        <translation>请让管理员把您加入 plugdev 组，重新登录，然后重新插入设备。</translation>
    </message>
    <message>
        <source>in recovery</source>
        <translation>处于恢复模式</translation>
    </message>
    <message>
        <source>Restart it into Android.</source>
        <translation>请重启进入 Android。</translation>
    </message>
    <message>
        <source>waiting for an update</source>
        <translation>正在等待更新</translation>
    </message>
    <message>
        <source>in its boot loader</source>
        <translation>处于引导加载程序</translation>
    </message>
    <message>
        <source>ready</source>
        <translation>就绪</translation>
    </message>
    <message>
        <source>Restart the device and refresh the list.</source>
        <translation>请重启设备，然后刷新列表。</translation>
    </message>
</context>
<context>
    <name>DeviceLister</name>
    <message>
        <source>The program adb cannot be started. Install it, and refresh the list.</source>
        <translation>无法启动程序 adb。请安装它，然后刷新列表。</translation>
    </message>
    <message>
        <source>adb cannot list the devices.</source>
        <translation>adb 无法列出设备。</translation>
    </message>
    <message>
        <source>adb does not answer.</source>
        <translation>adb 没有应答。</translation>
    </message>
    <message>
        <source>Unplug the devices and refresh the list.</source>
        <translation>请拔下设备，然后刷新列表。</translation>
    </message>
</context>
<context>
    <name>DeviceModel</name>
    <message>
        <source>Device</source>
        <translation>设备</translation>
    </message>
    <message>
        <source>State</source>
        <translation>状态</translation>
    </message>
    <message>
        <source>What to do</source>
        <translation>该怎么做</translation>
    </message>
</context>
<context>
    <name>DeviceWork</name>
    <message>
        <source>No package name is found in %1. Choose an APK that is whole.</source>
        <translation>在 %1 中找不到包名。请选择完整的 APK。</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be the name of a package. Choose another APK.</source>
        <translation>“%1”不能作为包名。请选择其他 APK。</translation>
    </message>
    <message>
        <source>adb has reported nothing within %1 minutes. Look at the device, and plug it in again.</source>
        <translation>adb 在 %1 分钟内没有任何报告。请查看设备，并重新插入。</translation>
    </message>
    <message>
        <source>adb crashed without a word. Plug the device in again and repeat.</source>
        <translation>adb 崩溃，没有留下任何信息。请重新插入设备后再试。</translation>
    </message>
</context>
<context>
    <name>DevicesPage</name>
    <message>
        <source>Devices</source>
        <translation>设备</translation>
    </message>
    <message>
        <source>An APK is being installed on %1.</source>
        <translation>正在 %1 上安装 APK。</translation>
    </message>
    <message>
        <source>A package is being removed from %1.</source>
        <translation>正在从 %1 移除应用。</translation>
    </message>
    <message>
        <source>&amp;Attached devices:</source>
        <translation>已连接的设备(&amp;A)：</translation>
    </message>
    <message>
        <source>Attached devices</source>
        <translation>已连接的设备</translation>
    </message>
    <message>
        <source>&amp;Refresh</source>
        <translation>刷新(&amp;R)</translation>
    </message>
    <message>
        <source>A&amp;PK:</source>
        <translation>APK(&amp;P)：</translation>
    </message>
    <message>
        <source>APK to install</source>
        <translation>要安装的 APK</translation>
    </message>
    <message>
        <source>Choose an APK, or drop one here</source>
        <translation>选择 APK，或拖放到这里</translation>
    </message>
    <message>
        <source>&amp;Choose…</source>
        <translation>选择(&amp;C)…</translation>
    </message>
    <message>
        <source>&amp;Install…</source>
        <translation>安装(&amp;I)…</translation>
    </message>
    <message>
        <source>&amp;Uninstall…</source>
        <translation>卸载(&amp;U)…</translation>
    </message>
    <message>
        <source>The device is at work</source>
        <translation>设备正在工作</translation>
    </message>
    <message>
        <source>Outcome</source>
        <translation>结果</translation>
    </message>
    <message>
        <source>No device is attached. Connect one by USB, unlock it, switch USB debugging on in its developer options, and refresh the list.</source>
        <translation>没有连接设备。请用 USB 连接一台，解锁，在开发者选项中打开 USB 调试，然后刷新列表。</translation>
    </message>
    <message>
        <source>Choose an APK</source>
        <translation>选择 APK</translation>
    </message>
    <message>
        <source>Android packages (*.apk)</source>
        <translation>Android 安装包 (*.apk)</translation>
    </message>
    <message>
        <source>Choose an APK first.</source>
        <translation>请先选择 APK。</translation>
    </message>
    <message>
        <source>A path with a quotation mark cannot be used. Rename %1.</source>
        <translation>不能使用含引号的路径。请重命名 %1。</translation>
    </message>
    <message>
        <source>%1 is not ready. %2</source>
        <translation>%1 未就绪。%2</translation>
    </message>
    <message>
        <source>No device is ready. Connect one, unlock it, allow debugging, and refresh the list.</source>
        <translation>没有就绪的设备。请连接一台，解锁，允许调试，然后刷新列表。</translation>
    </message>
    <message>
        <source>Several devices are ready</source>
        <translation>有多台设备就绪</translation>
    </message>
    <message>
        <source>&amp;Device:</source>
        <translation>设备(&amp;D)：</translation>
    </message>
    <message>
        <source>A serial with a quotation mark cannot be used. Choose another device than %1.</source>
        <translation>不能使用含引号的序列号。请选择 %1 以外的设备。</translation>
    </message>
    <message>
        <source>The package&apos;s name is being read.</source>
        <translation>正在读取包名。</translation>
    </message>
    <message>
        <source>Remove %1 and its data from %2 before the install?</source>
        <translation>安装前要从 %2 移除 %1 及其数据吗？</translation>
    </message>
    <message>
        <source>Remove %1 and its data from %2?</source>
        <translation>要从 %2 移除 %1 及其数据吗？</translation>
    </message>
    <message>
        <source>The installed package goes first, with all its data, even if the device then refuses %1.</source>
        <translation>已安装的应用会先连同所有数据一起移除，即使设备随后拒绝 %1。</translation>
    </message>
    <message>
        <source>There is no way back.</source>
        <translation>此操作无法撤销。</translation>
    </message>
    <message>
        <source>Remove and &amp;install</source>
        <translation>移除并安装(&amp;I)</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>移除(&amp;R)</translation>
    </message>
    <message>
        <source>Package of the open &amp;job:</source>
        <translation>已打开任务的安装包(&amp;J)：</translation>
    </message>
    <message>
        <source>Package of the open job</source>
        <translation>已打开任务的安装包</translation>
    </message>
    <message>
        <source>Choose a channel</source>
        <translation>选择渠道</translation>
    </message>
    <message>
        <source>No job is open</source>
        <translation>没有打开任务</translation>
    </message>
    <message>
        <source>There is no file %1. Build its channel, or choose another APK.</source>
        <translation>没有文件 %1。请构建该渠道，或选择其他 APK。</translation>
    </message>
    <message>
        <source>Refresh the list to see the attached devices. It starts adb&apos;s server, which stays when the window closes.</source>
        <translation>刷新列表即可查看已连接的设备。这会启动 adb 的服务器，窗口关闭后它仍会运行。</translation>
    </message>
    <message>
        <source>Refresh the list of devices first.</source>
        <translation>请先刷新设备列表。</translation>
    </message>
</context>
<context>
    <name>GameApk</name>
    <message>
        <source>The new job %1.</source>
        <translation>新任务%1。</translation>
    </message>
    <message>
        <source>aapt cannot read %1: is it a whole APK? %2</source>
        <translation>aapt 无法读取 %1：它是完整的 APK 吗？%2</translation>
    </message>
</context>
<context>
    <name>JobDocument</name>
    <message>
        <source>%1 cannot be read: %2</source>
        <translation>无法读取 %1：%2</translation>
    </message>
    <message>
        <source>There is no file %1.</source>
        <translation>没有文件 %1。</translation>
    </message>
    <message>
        <source>%1 is larger than a job can be.</source>
        <translation>%1 超过了任务文件的大小上限。</translation>
    </message>
    <message>
        <source>%1 is no job, since it is not JSON: %2</source>
        <translation>%1 不是任务，因为它不是 JSON：%2</translation>
    </message>
    <message>
        <source>%1 is no job: it has no list of &quot;channels&quot;.</source>
        <translation>%1 不是任务：其中没有 &quot;channels&quot; 列表。</translation>
    </message>
    <message>
        <source>%1 gives %2 twice. Remove one of them with a text editor.</source>
        <translation>%1 中 %2 出现了两次。请用文本编辑器删去其中一个。</translation>
    </message>
    <message>
        <source>%1 has been changed by another program. Open it again, or save this job under another name.</source>
        <translation>%1 已被其他程序修改。请重新打开它，或将此任务另存为其他名称。</translation>
    </message>
    <message>
        <source>%1 cannot be written: %2</source>
        <translation>无法写入 %1：%2</translation>
    </message>
    <message>
        <source>The name of the folder %1.</source>
        <translation>文件夹的名称%1。</translation>
    </message>
    <message>
        <source>The run itself needs the name %1. Choose another folder.</source>
        <translation>构建本身需要名称 %1。请选择其他文件夹。</translation>
    </message>
    <message>
        <source>%1 has the folder %2 already. Choose another one.</source>
        <translation>%1 已经使用文件夹 %2。请选择其他文件夹。</translation>
    </message>
    <message>
        <source>%1 is no name of an Android package, like com.example.game.</source>
        <translation>%1 不是 Android 包名；包名形如 com.example.game。</translation>
    </message>
    <message>
        <source>The job has no SDKs, so that no channel can have %1.</source>
        <translation>此任务没有 SDK，因此渠道不能使用 %1。</translation>
    </message>
    <message>
        <source>%1 is no SDK of this job. It has %2.</source>
        <translation>%1 不是此任务的 SDK。此任务有 %2。</translation>
    </message>
    <message>
        <source>Folder %1</source>
        <translation>文件夹 %1</translation>
    </message>
    <message>
        <source>Name %1</source>
        <translation>名称 %1</translation>
    </message>
    <message>
        <source>Package name of %1</source>
        <translation>%1 的包名</translation>
    </message>
    <message>
        <source>Add a channel</source>
        <translation>添加渠道</translation>
    </message>
    <message>
        <source>SDKs of %1</source>
        <translation>%1 的 SDK</translation>
    </message>
    <message>
        <source>Mark of %1</source>
        <translation>%1 的角标</translation>
    </message>
    <message>
        <source>Place of the mark of %1</source>
        <translation>%1 的角标位置</translation>
    </message>
    <message>
        <source>%1 channels</source>
        <translation>%1 个渠道</translation>
    </message>
    <message>
        <source>Copy %1</source>
        <translation>复制 %1</translation>
    </message>
    <message>
        <source>Remove %1</source>
        <translation>移除 %1</translation>
    </message>
    <message>
        <source>Move %1</source>
        <translation>移动 %1</translation>
    </message>
    <message>
        <source>%1 is no number of a developer record, which has up to nine digits.</source>
        <translation>%1 不是开发者记录的编号，编号最多九位数字。</translation>
    </message>
    <message>
        <source>Number of %1</source>
        <translation>%1 的记录编号</translation>
    </message>
    <message>
        <source>Files of %1</source>
        <translation>%1 的文件</translation>
    </message>
    <message>
        <source>Encryption of %1</source>
        <translation>%1 的加密</translation>
    </message>
</context>
<context>
    <name>JobFiles</name>
    <message>
        <source>Edits are not saved</source>
        <translation>修改尚未保存</translation>
    </message>
    <message>
        <source>The job %1 has edits that are not saved.</source>
        <translation>任务 %1 有尚未保存的修改。</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>保存(&amp;S)</translation>
    </message>
    <message>
        <source>&amp;Drop the edits</source>
        <translation>放弃修改(&amp;D)</translation>
    </message>
    <message>
        <source>&amp;Go on editing</source>
        <translation>继续编辑(&amp;G)</translation>
    </message>
    <message>
        <source>%1 is neither a job, which ends in .json, nor an APK.</source>
        <translation>%1 既不是任务（以 .json 结尾），也不是 APK。</translation>
    </message>
    <message>
        <source>Open a job</source>
        <translation>打开任务</translation>
    </message>
    <message>
        <source>Jobs (*.json)</source>
        <translation>任务 (*.json)</translation>
    </message>
    <message>
        <source>The game&apos;s APK</source>
        <translation>游戏的 APK</translation>
    </message>
    <message>
        <source>Android packages (*.apk)</source>
        <translation>Android 安装包 (*.apk)</translation>
    </message>
    <message>
        <source>The job cannot be made: %1.</source>
        <translation>无法创建任务：%1。</translation>
    </message>
    <message>
        <source>Save the job as</source>
        <translation>任务另存为</translation>
    </message>
</context>
<context>
    <name>JobMenus</name>
    <message>
        <source>&amp;File</source>
        <translation>文件(&amp;F)</translation>
    </message>
    <message>
        <source>&amp;Open a job…</source>
        <translation>打开任务(&amp;O)…</translation>
    </message>
    <message>
        <source>&amp;Recent jobs</source>
        <translation>最近的任务(&amp;R)</translation>
    </message>
    <message>
        <source>&amp;New job from an APK…</source>
        <translation>用 APK 新建任务(&amp;N)…</translation>
    </message>
    <message>
        <source>New job from the sa&amp;mple…</source>
        <translation>用示例新建任务(&amp;M)…</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>保存(&amp;S)</translation>
    </message>
    <message>
        <source>Save &amp;as…</source>
        <translation>另存为(&amp;A)…</translation>
    </message>
    <message>
        <source>&amp;Close the job</source>
        <translation>关闭任务(&amp;C)</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>退出(&amp;Q)</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>编辑(&amp;E)</translation>
    </message>
    <message>
        <source>&amp;Undo: %1</source>
        <translation>撤销(&amp;U)：%1</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>撤销(&amp;U)</translation>
    </message>
    <message>
        <source>&amp;Redo: %1</source>
        <translation>重做(&amp;R)：%1</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>重做(&amp;R)</translation>
    </message>
</context>
<context>
    <name>LogModel</name>
    <message>
        <source>Log</source>
        <translation>日志</translation>
    </message>
    <message>
        <source>Detail</source>
        <translation>细节</translation>
    </message>
    <message>
        <source>Information</source>
        <translation>信息</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>时间</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>类别</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>内容</translation>
    </message>
</context>
<context>
    <name>LogPage</name>
    <message>
        <source>Log</source>
        <translation>日志</translation>
    </message>
    <message>
        <source>&amp;Search:</source>
        <translation>搜索(&amp;S)：</translation>
    </message>
    <message>
        <source>S&amp;how:</source>
        <translation>显示(&amp;H)：</translation>
    </message>
    <message>
        <source>Everything</source>
        <translation>全部</translation>
    </message>
    <message>
        <source>The tool&apos;s log</source>
        <translation>工具的日志</translation>
    </message>
    <message>
        <source>Warnings and errors</source>
        <translation>警告和错误</translation>
    </message>
    <message>
        <source>Search in the log</source>
        <translation>在日志中搜索</translation>
    </message>
    <message>
        <source>Which entries are shown</source>
        <translation>显示哪些条目</translation>
    </message>
    <message>
        <source>The whole entry</source>
        <translation>完整条目</translation>
    </message>
    <message>
        <source>Choose an entry to read all of it.</source>
        <translation>选中一个条目即可阅读全文。</translation>
    </message>
    <message>
        <source>The file: %1</source>
        <translation>文件：%1</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>复制(&amp;C)</translation>
    </message>
    <message>
        <source>Copies the chosen entries, or all that are shown</source>
        <translation>复制选中的条目；未选中时复制显示的全部条目</translation>
    </message>
    <message>
        <source>C&amp;lear the view</source>
        <translation>清空显示(&amp;L)</translation>
    </message>
    <message>
        <source>The file stays as it is</source>
        <translation>文件保持不变</translation>
    </message>
    <message>
        <source>Nothing has been logged yet. What goes wrong during work is told here.</source>
        <translation>还没有日志。工作中出现的问题会显示在这里。</translation>
    </message>
    <message>
        <source>No entry fits. Search for something else, or show everything.</source>
        <translation>没有符合的条目。请换一个词搜索，或显示全部。</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>QuenzoTool</source>
        <translation>QuenzoTool</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>查看(&amp;V)</translation>
    </message>
    <message>
        <source>&amp;Language</source>
        <translation>语言(&amp;L)</translation>
    </message>
    <message>
        <source>Pages</source>
        <translation>页面</translation>
    </message>
    <message>
        <source>Work is going on</source>
        <translation>工作正在进行</translation>
    </message>
    <message>
        <source>Closing stops it as soon as it can be stopped; what is finished stays.</source>
        <translation>关闭窗口会让它尽快停止；已完成的部分会保留。</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>帮助(&amp;H)</translation>
    </message>
    <message>
        <source>&amp;About QuenzoTool</source>
        <translation>关于 QuenzoTool(&amp;A)</translation>
    </message>
    <message>
        <source>Hide this message</source>
        <translation>隐藏此消息</translation>
    </message>
    <message>
        <source>%1[*] in %2 - QuenzoTool</source>
        <translation>%2 中的 %1[*] - QuenzoTool</translation>
    </message>
    <message>
        <source>About QuenzoTool</source>
        <translation>关于 QuenzoTool</translation>
    </message>
    <message>
        <source>QuenzoTool %1: builds the packages of a mobile game for its channels. The program quenzo does the same from the command line.</source>
        <translation>QuenzoTool %1：为手机游戏构建各渠道的安装包。命令行程序 quenzo 也能完成同样的工作。</translation>
    </message>
    <message>
        <source>The window closes as soon as the work at hand can be ended.</source>
        <translation>正在进行的工作一能结束，窗口就会关闭。</translation>
    </message>
    <message>
        <source>&amp;Stop and close</source>
        <translation>停止并关闭(&amp;S)</translation>
    </message>
    <message>
        <source>&amp;Go on working</source>
        <translation>继续工作(&amp;G)</translation>
    </message>
</context>
<context>
    <name>MarkPanel</name>
    <message>
        <source>Mark on the icon</source>
        <translation>图标上的角标</translation>
    </message>
    <message>
        <source>Drag the mark, or move it with the arrow keys; with Shift by ten pixels.</source>
        <translation>拖动角标，或用方向键移动；按住 Shift 每次移动十个像素。</translation>
    </message>
    <message>
        <source>&amp;Mark:</source>
        <translation>角标(&amp;M)：</translation>
    </message>
    <message>
        <source>C&amp;orner:</source>
        <translation>位置(&amp;O)：</translation>
    </message>
    <message>
        <source>From the &amp;left:</source>
        <translation>距左边(&amp;L)：</translation>
    </message>
    <message>
        <source>From the &amp;top:</source>
        <translation>距上边(&amp;T)：</translation>
    </message>
    <message>
        <source> px</source>
        <translation> 像素</translation>
    </message>
    <message>
        <source>Flus&amp;h in the corner</source>
        <translation>紧贴角落(&amp;H)</translation>
    </message>
    <message>
        <source>As the job&apos;s &amp;defaults say</source>
        <translation>按任务的默认值(&amp;D)</translation>
    </message>
    <message>
        <source>Left top</source>
        <translation>左上</translation>
    </message>
    <message>
        <source>Left bottom</source>
        <translation>左下</translation>
    </message>
    <message>
        <source>Right top</source>
        <translation>右上</translation>
    </message>
    <message>
        <source>Right bottom</source>
        <translation>右下</translation>
    </message>
    <message>
        <source>The job file calls it &quot;x&quot;.</source>
        <translation>任务文件中称为 &quot;x&quot;。</translation>
    </message>
    <message>
        <source>The job file calls it &quot;y&quot;, and counts upwards: 20 pixels are -20 there.</source>
        <translation>任务文件中称为 &quot;y&quot;，向上计数：20 像素在其中为 -20。</translation>
    </message>
    <message>
        <source>Choose a channel to see its icon.</source>
        <translation>选择一个渠道即可查看其图标。</translation>
    </message>
    <message>
        <source>%1 channels, shown: %2</source>
        <translation>%1 个渠道，显示：%2</translation>
    </message>
    <message>
        <source>No mark</source>
        <translation>无角标</translation>
    </message>
</context>
<context>
    <name>MarkPictures</name>
    <message>
        <source>The job names no icon, so that there is nothing to mark. Name one under &quot;icons&quot; in the job file.</source>
        <translation>任务没有指定图标，因此没有可加角标的对象。请在任务文件的 &quot;icons&quot; 中指定一个。</translation>
    </message>
    <message>
        <source>The icon %1 cannot be shown: %2</source>
        <translation>无法显示图标 %1：%2</translation>
    </message>
</context>
<context>
    <name>NewJobDialog</name>
    <message>
        <source>New job</source>
        <translation>新建任务</translation>
    </message>
    <message>
        <source>&amp;Make the job</source>
        <translation>创建任务(&amp;M)</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>The sample game Sky Harbour with its channels: everything is there to be built.</source>
        <translation>示例游戏 Sky Harbour 及其渠道：一切就绪，可直接构建。</translation>
    </message>
    <message>
        <source>%1
Package: %2
APK: %3</source>
        <translation>%1
包名：%2
APK：%3</translation>
    </message>
    <message>
        <source>&amp;Folder of the job:</source>
        <translation>任务的文件夹(&amp;F)：</translation>
    </message>
    <message>
        <source>Folder of the job</source>
        <translation>任务的文件夹</translation>
    </message>
    <message>
        <source>&amp;Choose…</source>
        <translation>选择(&amp;C)…</translation>
    </message>
    <message>
        <source>Choose a folder</source>
        <translation>选择文件夹</translation>
    </message>
    <message>
        <source>An empty folder for the job</source>
        <translation>任务所用的空文件夹</translation>
    </message>
    <message>
        <source>no folder is named</source>
        <translation>没有指定文件夹</translation>
    </message>
    <message>
        <source>The job cannot be written there: %1. Name another folder; it is made.</source>
        <translation>任务无法写到那里：%1。请指定另一个文件夹，它会被创建。</translation>
    </message>
</context>
<context>
    <name>RecordsBase</name>
    <message>
        <source>&apos;%1&apos; cannot be read: %2</source>
        <translation>无法读取 &apos;%1&apos;：%2</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is no records file. Choose a file such as records.db in a job&apos;s output.</source>
        <translation>&apos;%1&apos; 不是记录文件。请选择例如任务输出文件夹中的 records.db。</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be opened as a records file.</source>
        <translation>无法将 &apos;%1&apos; 作为记录文件打开。</translation>
    </message>
</context>
<context>
    <name>RecordsPage</name>
    <message>
        <source>Records</source>
        <translation>记录</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is being written.</source>
        <translation>正在写入 &apos;%1&apos;。</translation>
    </message>
    <message>
        <source>Records &amp;file:</source>
        <translation>记录文件(&amp;F)：</translation>
    </message>
    <message>
        <source>&amp;Choose…</source>
        <translation>选择(&amp;C)…</translation>
    </message>
    <message>
        <source>Read a&amp;gain</source>
        <translation>重新读取(&amp;G)</translation>
    </message>
    <message>
        <source>&amp;Table:</source>
        <translation>表(&amp;T)：</translation>
    </message>
    <message>
        <source>Table</source>
        <translation>表</translation>
    </message>
    <message>
        <source>Sh&amp;ow:</source>
        <translation>显示(&amp;O)：</translation>
    </message>
    <message>
        <source>rows that contain this</source>
        <translation>包含此内容的行</translation>
    </message>
    <message>
        <source>Scrambled columns</source>
        <translation>混淆的列</translation>
    </message>
    <message>
        <source>Choose the columns whose scrambled texts are shown as they were.</source>
        <translation>选择要还原显示混淆文本的列。</translation>
    </message>
    <message>
        <source>&amp;Export as CSV…</source>
        <translation>导出为 CSV(&amp;E)…</translation>
    </message>
    <message>
        <source>Rows of the table</source>
        <translation>表中的行</translation>
    </message>
    <message>
        <source>Choose a records file: every job keeps one, records.db, in its output folder.</source>
        <translation>请选择记录文件：每个任务都在其输出文件夹中保存一个 records.db。</translation>
    </message>
    <message>
        <source>Choose a records file</source>
        <translation>选择记录文件</translation>
    </message>
    <message>
        <source>Records (*.db);;All files (*)</source>
        <translation>记录 (*.db);;所有文件 (*)</translation>
    </message>
    <message>
        <source>%1 of %2 rows</source>
        <translation>%1 行，共 %2 行</translation>
    </message>
    <message>
        <source>Export as CSV</source>
        <translation>导出为 CSV</translation>
    </message>
    <message>
        <source>CSV files (*.csv);;All files (*)</source>
        <translation>CSV 文件 (*.csv);;所有文件 (*)</translation>
    </message>
    <message>
        <source>&apos;%1&apos; was not written: %2</source>
        <translation>未能写入 &apos;%1&apos;：%2</translation>
    </message>
</context>
<context>
    <name>ReportModel</name>
    <message>
        <source>%1 s</source>
        <translation>%1 秒</translation>
    </message>
    <message>
        <source>Channel</source>
        <translation>渠道</translation>
    </message>
    <message>
        <source>Outcome</source>
        <translation>结果</translation>
    </message>
    <message>
        <source>Package</source>
        <translation>包名</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>大小</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>时间</translation>
    </message>
    <message>
        <source>Notes</source>
        <translation>备注</translation>
    </message>
</context>
<context>
    <name>RowModel</name>
    <message>
        <source>nothing</source>
        <translation>无</translation>
    </message>
</context>
<context>
    <name>SdkDelegate</name>
    <message>
        <source>SDKs of the channel</source>
        <translation>渠道的 SDK</translation>
    </message>
</context>
<context>
    <name>StartPage</name>
    <message>
        <source>Start</source>
        <translation>开始</translation>
    </message>
    <message>
        <source>Open a job, or drop one here: a job names a game, its base APK and the channels whose packages are wanted.</source>
        <translation>打开一个任务，或将其拖放到这里：任务写明一个游戏、它的基础 APK 以及需要哪些渠道的安装包。</translation>
    </message>
    <message>
        <source>&amp;Open a job…</source>
        <translation>打开任务(&amp;O)…</translation>
    </message>
    <message>
        <source>&amp;New job from an APK…</source>
        <translation>用 APK 新建任务(&amp;N)…</translation>
    </message>
    <message>
        <source>&amp;Try the sample…</source>
        <translation>试用示例(&amp;T)…</translation>
    </message>
    <message>
        <source>&amp;Recent jobs:</source>
        <translation>最近的任务(&amp;R)：</translation>
    </message>
    <message>
        <source>Recent jobs</source>
        <translation>最近的任务</translation>
    </message>
    <message>
        <source>Enter opens a job; Delete takes it off this list and leaves its files alone.</source>
        <translation>按回车打开任务；按删除键将其从列表中移除，文件不受影响。</translation>
    </message>
    <message>
        <source>No jobs yet. Open one, begin one with your game&apos;s APK, or try the sample.</source>
        <translation>还没有任务。请打开一个任务，用游戏的 APK 新建一个，或试用示例。</translation>
    </message>
    <message>
        <source>What is wrong with the job</source>
        <translation>任务中的错误</translation>
    </message>
    <message>
        <source>%1 (not there)</source>
        <translation>%1（不存在）</translation>
    </message>
    <message>
        <source>%1 cannot be built yet. What is wrong in %2, each with its place:</source>
        <translation>%1 还不能构建。%2 中的问题及其位置：</translation>
    </message>
    <message>
        <source>%1 is open and can be built: %2</source>
        <translation>%1 已打开，可以构建：%2</translation>
    </message>
    <message>
        <source>%1 has edits that are not saved: %2</source>
        <translation>%1 有尚未保存的修改：%2</translation>
    </message>
    <message>
        <source>%1 is being looked through: %2</source>
        <translation>正在检查 %1：%2</translation>
    </message>
</context>
<context>
    <name>TreeLookModel</name>
    <message>
        <source>goes</source>
        <translation>将复制或移动</translation>
    </message>
    <message>
        <source>replaces a file</source>
        <translation>将替换文件</translation>
    </message>
    <message>
        <source>stays</source>
        <translation>保留</translation>
    </message>
    <message>
        <source>What happens</source>
        <translation>结果</translation>
    </message>
    <message>
        <source>File</source>
        <translation>文件</translation>
    </message>
</context>
<context>
    <name>TreesPage</name>
    <message>
        <source>Folders</source>
        <translation>文件夹</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is being copied.</source>
        <translation>正在复制 &apos;%1&apos;。</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is being moved.</source>
        <translation>正在移动 &apos;%1&apos;。</translation>
    </message>
    <message>
        <source>Stopping behind the file at hand…</source>
        <translation>处理完当前文件后停止…</translation>
    </message>
    <message>
        <source>&amp;What to do:</source>
        <translation>操作(&amp;W)：</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>复制</translation>
    </message>
    <message>
        <source>Move</source>
        <translation>移动</translation>
    </message>
    <message>
        <source>Move what is finished to an output folder</source>
        <translation>将已完成的内容移到输出文件夹</translation>
    </message>
    <message>
        <source>&amp;From the folder:</source>
        <translation>源文件夹(&amp;F)：</translation>
    </message>
    <message>
        <source>&amp;To the folder:</source>
        <translation>目标文件夹(&amp;T)：</translation>
    </message>
    <message>
        <source>&amp;Names that stay:</source>
        <translation>保留的名称(&amp;N)：</translation>
    </message>
    <message>
        <source>Log, build</source>
        <translation>Log, build</translation>
    </message>
    <message>
        <source>&amp;Choose…</source>
        <translation>选择(&amp;C)…</translation>
    </message>
    <message>
        <source>Choose the folder to take from</source>
        <translation>选择源文件夹</translation>
    </message>
    <message>
        <source>C&amp;hoose…</source>
        <translation>选择(&amp;H)…</translation>
    </message>
    <message>
        <source>Choose the folder to bring to</source>
        <translation>选择目标文件夹</translation>
    </message>
    <message>
        <source>&amp;Look first</source>
        <translation>先查看(&amp;L)</translation>
    </message>
    <message>
        <source>&amp;Start</source>
        <translation>开始(&amp;S)</translation>
    </message>
    <message>
        <source>Sto&amp;p</source>
        <translation>停止(&amp;P)</translation>
    </message>
    <message>
        <source>How much has arrived</source>
        <translation>已到达的量</translation>
    </message>
    <message>
        <source>Files, and what happens to each</source>
        <translation>文件以及每个文件的结果</translation>
    </message>
    <message>
        <source>Name two folders and look first: here is then what would go, what would be replaced, and what would stay. Nothing is touched before you start.</source>
        <translation>填写两个文件夹并先查看：这里会列出将移走、将替换和将保留的内容。开始之前不会改动任何文件。</translation>
    </message>
    <message>
        <source>Choose a folder</source>
        <translation>选择文件夹</translation>
    </message>
    <message>
        <source>Looking…</source>
        <translation>正在查看…</translation>
    </message>
    <message>
        <source>%1 files (%2) would be copied; %3 replace a file.</source>
        <translation>将复制 %1 个文件（%2）；其中 %3 个会替换已有文件。</translation>
    </message>
    <message>
        <source>%1 files (%2) would be moved; %3 replace a file.</source>
        <translation>将移动 %1 个文件（%2）；其中 %3 个会替换已有文件。</translation>
    </message>
    <message>
        <source>Done: %1 files (%2) are in &apos;%3&apos;.</source>
        <translation>完成：%1 个文件（%2）已在 &apos;%3&apos; 中。</translation>
    </message>
    <message>
        <source>Not everything has come to &apos;%1&apos;; the rest is in &apos;%2&apos;. The page Log says what stood in the way.</source>
        <translation>并非全部都到达 &apos;%1&apos;；其余在 &apos;%2&apos; 中。“日志”页面说明了原因。</translation>
    </message>
    <message>
        <source>Stopped. What had arrived is in &apos;%1&apos;, the rest is in &apos;%2&apos;; look and start again to go on.</source>
        <translation>已停止。已到达的在 &apos;%1&apos; 中，其余在 &apos;%2&apos; 中；再次查看并开始即可继续。</translation>
    </message>
</context>
</TS>
